// batch_frontend.h: the front end without a window: it chooses the files of the command line and
// waits for the end of a run or for an interrupt.
#pragma once
#include "app/frontend.h"

// The functions that the application asks of it.
extern const Frontend BATCH_FRONTEND;

// Names the files that choose_file gives, and from here on takes Ctrl-C and SIGTERM as a
// request to stop.
//   process_path   may be null
void batch_frontend_start(const char *layout_path, const char *process_path);
void batch_frontend_end();

// Whether an interrupt has come. Afterwards choose_file behaves as if cancelled.
bool batch_interrupted();

// After run_command has started the worker: waits for its end, and passes an interrupt on as a stop
// request. True: run_done has been called and the worker has ended. False: some seconds after an interrupt
// the step under way has not ended, and the worker is still at it.
bool batch_wait_for_run(AppState *state);
