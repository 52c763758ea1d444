#include "app/run_command.h"

#include <cassert>

#include "app/frontend.h"
#include "app/menu.h"
#include "app/process_thread.h"
#include "log/log.h"
#include "platform/platform.h"
#include "platform/thread_role.h"
#include "sim/dump.h"
#include "sim/stack_setup.h"

// Puts a new run in the place of the previous one. Takes the stack over.
static void replace_run(AppState *state, Stack *stack, const wchar_t *path) {
    // The status bar gets the path of the run before this one, so on the first run it shows nothing;
    // kept so, since that is what users of the status bar know.
    state->frontend->set_status(state, STATUS_PROCESS, wstring_text(state->process_path));
    wstring_free(state->process_path);
    state->process_path = wstring_copy(path);
    stack_free(state->stack);
    state->stack = stack;
    images_free(state);
    images_create(state, stack->steps->count);
}

static i32 cancel_run() {
    console_append(L"Run process canceled");
    console_append(L"\r\n");
    console_append(L"\r\n");
    diagnostics_show();
    return 1;
}

// Hands the OpenGL context over and starts the worker. Returns 0, or 1 when the system gives no thread.
static i32 start_worker(AppState *state) {
    diagnostics_show();
    console_append(L"Running process ...");
    console_append(L"\r\n\r\n");
    if (state->worker_thread != nullptr) {
        platform_thread_join(state->worker_thread);  // of the previous run, which has told its end
    }
    if (state->gl_context != nullptr) {
        platform_gl_make_current(nullptr);
    }
    state->run_active = 1;
    state->worker_thread = platform_thread_start(process_thread, state);
    if (state->worker_thread != nullptr) {
        return 0;
    }
    state->run_active = 0;
    if (state->gl_context != nullptr) {
        platform_gl_make_current(state->gl_context);
    }
    diagnostic_write(L"the system refuses to start a thread for the run");
    return cancel_run();
}

// Whether a run may start as far as its dumps go: where they are not required their failing is only told.
static bool dumps_allow_run(AppState *state, Stack *stack) {
    stack->dump_folder = state->dump_folder != nullptr ? wstring_text(state->dump_folder) : nullptr;
    if (dump_is_possible(stack) || state->dump_required == 0) {
        return true;
    }
    state->run_failure = RUN_NO_DUMP;
    return false;
}

// Asks for a process file and starts its run. Returns 0 when the worker was started.
static i32 prepare_run(AppState *state) {
    const Owned<WString> path(state->frontend->choose_file(state, FILE_PROCESS));
    if (path == nullptr) {
        console_append(L"Process file selection canceled");
        console_append(L"\r\n");
        console_append(L"\r\n");
        return 1;
    }
    Owned<Stack> stack(stack_create(wstring_text(path.get()), state->layout));
    if (stack == nullptr || !dumps_allow_run(state, stack.get())) {
        return cancel_run();
    }
    replace_run(state, stack.release(), wstring_text(path.get()));
    platform_memory_give_back();  // what reading the layout and the set-up took, and the run before
    return start_worker(state);
}

i32 run_command(AppState *state) {
    assert(state != nullptr && thread_role_fits(THREAD_WINDOW));
    if (state->run_active != 0) {
        return 1;
    }
    log_write(L"Prepare run");
    menu_disable_all(state);
    state->stop_requested = 0;
    state->run_failure = RUN_NO_FAILURE;
    console_clear();
    console_append(L"--- Handling \"Run\" command ---");
    console_append(L"\r\n\r\n");
    log_write(L"Selecting the proces file");
    const i32 result = prepare_run(state);
    menu_update(state);
    return result;
}

void stop_command(AppState *state) {
    console_append(L"Handling \"Stop\" request: wait for current process step to complete ...");
    console_append(L"\r\n");
    state->stop_requested = 1;
    menu_update(state);
}

i32 run_done(AppState *state) {
    assert(state->run_active != 0 && thread_role_fits(THREAD_WINDOW));
    state->run_active = 0;
    if (state->gl_context != nullptr && !platform_gl_make_current(state->gl_context)) {
        diagnostic_write(L"the graphics cannot be used any more; save the images and start Quarn anew");
        state->run_failure = RUN_NO_GRAPHICS;
    }
    if (state->quit_pending != 0) {
        app_cleanup(state);
        return 1;
    }
    if (state->run_failure == RUN_NO_GRAPHICS) {
        message_show(L"Could not initialize graphics");
    }
    console_append(L"Use left and right arrows to browse through the process steps");
    console_append(L"\r\n");
    console_append(L"\r\n");
    diagnostics_show();
    menu_update(state);
    return 0;
}
