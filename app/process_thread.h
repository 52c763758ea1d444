// process_thread.h: the worker that runs a process, step by step, and makes a picture of each.
#pragma once
#include "app/app_state.h"

// The worker's thread function; `argument` is the AppState, whose stack has just been created.
// With a gl_context, which no other thread may hold at the call, every step but a dump gives one
// picture; without one the same heights come out and there are no pictures. The run ends early, as if it were
// stopped, when a picture cannot be made (run_failure). Returns 0.
i32 process_thread(void *argument);
