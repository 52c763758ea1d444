// worker_start.h: the thread beside the window's: it runs the steps of a process, or an export of them.
#pragma once
#include "app/app_state.h"

// Waits for the end of the worker before, which has told it, and starts another one with the state as its
// argument; run_active is 1 until it has told its end in turn. False, with run_active 0, when the system
// gives no thread. User-interface thread.
bool worker_start(AppState *state, PlatformThreadFunction function);
