// cut_worker.h: the threads that share the cuts of a call among them.
#pragma once
#include <atomic>
#include <mutex>
#include "app/batch/batch_frontend.h"
#include "app/batch/batch_options.h"
#include "app/batch/cut_table.h"

// A line that was told once and need not be told again for each cut.
struct ToldLine {
    wchar_t *text;  // owned
};

// What the workers share.
struct CutWork {
    const CutList *cuts;
    const BatchOptions *options;
    const AppState *main;   // with the layout and the output folder
    std::atomic<i32> next;  // the cut that nobody has taken
    std::mutex lock;        // of the results, and of the lines on the standard streams
    std::mutex set_up;      // runs are prepared one at a time: reader and extraction keep marks of their own
    CutResult *results;     // one a cut; owned
    ToldLine *told;         // of the process file, by its check; owned
    i32 told_count, told_capacity;
};

struct CutWorker {
    BatchRun run;  // first, since the context of the worker's thread points here
    CutWork *work;
    AppState state;
    PlatformThread *thread;
    i32 index;                // of the cut under way
    std::FILE *console;       // its "console.txt"
    bool console_failed;      // the system has refused a text
    std::atomic<bool> ended;  // the thread has no more to do
    std::atomic<bool> left;   // but its last run is still at a step (batch_run.h)
};

// Makes the state of a worker after that of the main thread. With pictures it gets a context of its own, or
// that of the main thread for the first. False when the graphics refuse it. Main thread.
bool cut_worker_create(CutWorker *worker, CutWork *work, bool first);

// Frees what the worker has of its own; its thread has been joined. Main thread.
void cut_worker_free(CutWorker *worker);

// The thread's function; `argument` is the CutWorker. Takes one cut after another until there are none, or an
// interrupt has come. Returns 0.
i32 cut_worker_thread(void *argument);
