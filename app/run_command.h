// run_command.h: the commands "Run Process" and "Stop", and the end of a run.
#pragma once
#include "app/app_state.h"

// Asks for a process file, sets the run up and starts the worker, which takes the OpenGL context
// over until run_done. Faults leave the previous run's stack and pictures in place. During a run nothing
// happens. Returns 0 when the worker was started, else 1 (cancelled, or faults told on the console;
// run_failure tells of a dump that cannot be written). User-interface thread.
i32 run_command(AppState *state);

// Asks the worker to end after the step under way. Any thread.
void stop_command(AppState *state);

// What the user-interface thread does when the worker is through: takes the OpenGL context back,
// then either cleans up (a close was pending; returns 1: the program should end) or tells the user
// how to browse (returns 0).
i32 run_done(AppState *state);
