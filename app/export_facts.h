// export_facts.h: what made the exports of a run.
#pragma once
#include "app/app_state.h"
#include "export/export_step.h"

// The facts of the last run, or of the one under way, and of this moment. Their texts are those of the state.
ExportFacts export_facts(const AppState *state);
