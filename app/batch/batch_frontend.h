// batch_frontend.h: the front end without a window: it chooses the files of the command line and
// waits for the end of a run or for an interrupt.
#pragma once
#include <atomic>
#include "app/batch/batch_output.h"
#include "app/frontend.h"

// What the thread of a run and its worker wait on. Its texts come first, since the context of a thread that
// is one of several runs (platform/thread_context.h) points to such a record. All zero at first.
struct BatchRun {
    BatchTexts texts;
    PlatformSemaphore *events;  // posted by an interrupt and at the end of the run
    PlatformSemaphore *taken;   // posted when run_done has returned
    std::atomic<i32> over;
};

// Makes and frees the semaphores of a run.
void batch_run_create(BatchRun *run);
void batch_run_free(BatchRun *run);

// The functions that the application asks of it, for the streams as they are. Valid to the end of the
// program.
const Frontend *batch_frontend();

// Names the files that choose_file gives, and from here on takes Ctrl-C and SIGTERM as a
// request to stop.
//   process_path   may be null
void batch_frontend_start(const char *layout_path, const char *process_path);

// Undoes it, but for the interrupts, which stay requests to stop that nobody takes.
void batch_frontend_end();

// Whether an interrupt has come. Afterwards choose_file behaves as if cancelled.
bool batch_interrupted();

// Waits for an interrupt, or until somebody calls batch_wake: for the main thread, while other threads run.
void batch_wait();
void batch_wake();

// After run_command has started the worker of this thread's run: waits for its end, and passes an interrupt
// on as a stop request. True: run_done has been called and the worker has ended. False: some seconds after an
// interrupt the step under way has not ended, and the worker is still at it.
bool batch_wait_for_run(AppState *state);
