#include "app/batch/batch_frontend.h"

#include <atomic>

#include "app/batch/batch_output.h"
#include "app/commands.h"

// How long an interrupted run may take for the step under way. Those who stop a program give it some ten
// seconds.
static constexpr i32 STEP_GRACE_MS = 5000;

// One for the program: signals and sinks come without a record to look into.
struct BatchFrontend {
    WideText layout_path;
    WideText process_path;              // null when there is none
    PlatformSemaphore *events;          // posted by an interrupt and at the end of a run
    PlatformSemaphore *run_done_taken;  // posted when run_done has returned
    std::atomic<i32> interrupted;
    std::atomic<i32> run_over;
};

static BatchFrontend batch = {};

void batch_frontend_start(const char *layout_path, const char *process_path) {
    batch.layout_path = platform_wide_from_system(layout_path);
    batch.process_path = process_path != nullptr ? platform_wide_from_system(process_path) : nullptr;
    batch.events = platform_semaphore_create();
    batch.run_done_taken = platform_semaphore_create();
    platform_interrupt_watch(&batch.interrupted, batch.events);
}

void batch_frontend_end() {
    // `events` stays, since an interrupt can still post it.
    platform_semaphore_free(batch.run_done_taken);
    batch.run_done_taken = nullptr;
    batch.layout_path = nullptr;
    batch.process_path = nullptr;
}

bool batch_interrupted() {
    return batch.interrupted != 0;
}

// Waits for the end of the run. False when an interrupt has come and the step under way does not end.
static bool wait_for_end(AppState *state) {
    bool stopping = false;
    while (batch.run_over == 0) {
        if (batch_interrupted() && !stopping) {
            stopping = true;
            stop_command(state);
        }
        if (!stopping) {
            platform_semaphore_wait(batch.events);
        } else if (!platform_semaphore_wait_for(batch.events, STEP_GRACE_MS)) {
            return batch.run_over != 0;
        }
    }
    return true;
}

bool batch_wait_for_run(AppState *state) {
    if (!wait_for_end(state)) {
        return false;
    }
    batch.run_over = 0;
    run_done(state);
    platform_semaphore_post(batch.run_done_taken);
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
    batch.run_over = 1;
    platform_semaphore_post(batch.events);
    platform_semaphore_wait(batch.run_done_taken);
}

// clang-format off
const Frontend BATCH_FRONTEND = {
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
    nullptr,               // memory_failed
};
// clang-format on
