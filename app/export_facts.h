// export_facts.h: a run as the writers of export/ see it.
#pragma once
#include "app/app_state.h"
#include "export/export_step.h"

// The facts of the last run, or of the one under way, and of this moment. Their texts are those of the state.
ExportFacts export_facts(const AppState *state);

// The title of the picture after a step, 0 the substrate, as people read it: picture_title keeps the bytes of
// the process file apart, as names of files have them. Lack of memory ends the program.
WideText export_title(const Stack *stack, i32 step_index);

// A step of a stack whose heights are those after it.
//   title, facts   stay the caller's
ExportStep export_step(const AppState *state, const Stack *stack, i32 step_index, const wchar_t *title,
                       const ExportFacts *facts);
