// load_command.h: the command "Load GDS".
#pragma once
#include "app/app_state.h"

// Asks for a layout and loads it; sets load_result. A failed load leaves the previous layout in force; during
// a run nothing happens. User-interface thread.
void load_gds_command(AppState *state);
