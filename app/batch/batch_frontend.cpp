#include "app/batch/batch_frontend.h"

#include "app/batch/batch_output.h"
#include "app/commands.h"
#include "platform/memory.h"

static wchar_t *chosen_layout = nullptr;
static wchar_t *chosen_process = nullptr;
static PlatformSemaphore *events = nullptr;          // posted by an interrupt and at the end of a run
static PlatformSemaphore *run_done_taken = nullptr;  // posted when run_done has returned
static volatile i32 interrupted = 0;
static volatile i32 run_over = 0;

void batch_frontend_start(const char *layout_path, const char *process_path) {
    chosen_layout = platform_wide_from_system(layout_path).release();
    chosen_process = process_path != nullptr ? platform_wide_from_system(process_path).release() : nullptr;
    events = platform_semaphore_create();
    run_done_taken = platform_semaphore_create();
    platform_interrupt_watch(&interrupted, events);
}

void batch_frontend_end() {
    // `events` stays, since an interrupt can still post it.
    platform_semaphore_free(run_done_taken);
    memory_free(chosen_layout);
    memory_free(chosen_process);
    run_done_taken = nullptr;
    chosen_layout = nullptr;
    chosen_process = nullptr;
}

bool batch_interrupted() {
    return interrupted != 0;
}

void batch_wait_for_run(AppState *state) {
    bool stopping = false;
    while (run_over == 0) {
        if (batch_interrupted() && !stopping) {
            stopping = true;
            stop_command(state);
        }
        platform_semaphore_wait(events);
    }
    run_over = 0;
    run_done(state);
    platform_semaphore_post(run_done_taken);
    platform_thread_join(state->worker_thread);
    state->worker_thread = nullptr;
}

static WString *choose_file(AppState *, FileKind kind) {
    const wchar_t *path = kind == FILE_LAYOUT ? chosen_layout : chosen_process;
    return batch_interrupted() || path == nullptr ? nullptr : wstring_copy(path);
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
    run_over = 1;
    platform_semaphore_post(events);
    platform_semaphore_wait(run_done_taken);
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
