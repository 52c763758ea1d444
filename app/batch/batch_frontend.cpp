#include "app/batch/batch_frontend.h"

#include "app/batch/progress_line.h"
#include "app/commands.h"
#include "platform/thread_context.h"

// How long an interrupted run may take for the step under way. Those who stop a program give it some ten
// seconds.
static constexpr i32 STEP_GRACE_MS = 5000;

// One for the program: signals and sinks come without a record to look into.
struct BatchFrontend {
    WideText layout_path;
    WideText process_path;  // null when there is none
    BatchRun run;           // of the only run, or of the main thread where there are several
    std::atomic<i32> interrupted;
};

static BatchFrontend batch = {};

void batch_run_create(BatchRun *run) {
    run->events = platform_semaphore_create();
    run->taken = platform_semaphore_create();
    run->over = 0;
}

void batch_run_free(BatchRun *run) {
    platform_semaphore_free(run->events);
    platform_semaphore_free(run->taken);
    run->events = nullptr;
    run->taken = nullptr;
}

// That of the calling thread, or of the thread that has started it.
static BatchRun *current_run() {
    auto *own = static_cast<BatchRun *>(thread_context());
    return own != nullptr ? own : &batch.run;
}

void batch_frontend_start(const char *layout_path, const char *process_path) {
    batch.layout_path = platform_wide_from_system(layout_path);
    batch.process_path = process_path != nullptr ? platform_wide_from_system(process_path) : nullptr;
    batch_run_create(&batch.run);
    platform_interrupt_watch(&batch.interrupted, batch.run.events);
}

void batch_frontend_end() {
    // `events` stays, since an interrupt can still post it.
    platform_semaphore_free(batch.run.taken);
    batch.run.taken = nullptr;
    batch.layout_path = nullptr;
    batch.process_path = nullptr;
}

bool batch_interrupted() {
    return batch.interrupted != 0;
}

void batch_wait() {
    platform_semaphore_wait(batch.run.events);
}

void batch_wake() {
    platform_semaphore_post(batch.run.events);
}

// Waits for the end of the run. False when an interrupt has come and the step under way does not end.
static bool wait_for_end(AppState *state, BatchRun *run) {
    bool stopping = false;
    while (run->over == 0) {
        if (batch_interrupted() && !stopping) {
            stopping = true;
            stop_command(state);
        }
        if (!stopping) {
            platform_semaphore_wait(run->events);
        } else if (!platform_semaphore_wait_for(run->events, STEP_GRACE_MS)) {
            return run->over != 0;
        }
    }
    return true;
}

bool batch_wait_for_run(AppState *state) {
    BatchRun *run = current_run();
    if (!wait_for_end(state, run)) {
        return false;
    }
    run->over = 0;
    run_done(state);
    platform_semaphore_post(run->taken);
    platform_thread_join(state->worker_thread);
    state->worker_thread = nullptr;
    return true;
}

static WString *choose_file(AppState *, FileKind kind) {
    const WideText &path = kind == FILE_LAYOUT ? batch.layout_path : batch.process_path;
    return batch_interrupted() || path == nullptr ? nullptr : wstring_copy(path.get());
}

static WString *choose_folder(AppState *, const wchar_t *) {
    return nullptr;
}

// There is no window: titles, status bar, menu and painting go nowhere.

static void set_title(AppState *, const wchar_t *) {}

static void set_status(AppState *, StatusPart, const wchar_t *) {}

static void menu_enable(AppState *, MenuCommand, bool) {}

static void do_nothing(AppState *) {}

static void tell_run_done(AppState *) {
    BatchRun *run = current_run();
    run->over = 1;
    platform_semaphore_post(run->events);
    platform_semaphore_wait(run->taken);
}

// clang-format off
static const Frontend BATCH_FRONTEND = {
    choose_file,
    choose_folder,
    do_nothing,            // paint_now
    set_title,
    set_status,
    menu_enable,
    do_nothing,            // menu_redraw
    do_nothing,            // repaint
    tell_run_done,
    batch_console_append,
    nullptr,               // console_clear: what is printed stays
    batch_error_line,      // message_show
    batch_error_line,      // diagnostic
    nullptr,               // diagnostic_early
    progress_line_show,    // progress
    nullptr,               // memory_failed
};
// clang-format on

const Frontend *batch_frontend() {
    static Frontend chosen;
    chosen = BATCH_FRONTEND;
    if (!progress_line_is_possible()) {
        chosen.progress = nullptr;
    }
    return &chosen;
}
