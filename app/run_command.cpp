#include "app/run_command.h"

#include <cassert>

#include "app/export_run.h"
#include "app/frontend.h"
#include "app/menu.h"
#include "app/process_thread.h"
#include "app/step_choice.h"
#include "log/log.h"
#include "log/progress.h"
#include "platform/platform.h"
#include "platform/thread_role.h"
#include "sim/dump.h"
#include "sim/stack_setup.h"

// Puts a new run in the place of the previous one. Takes the stack and the flags over.
static void replace_run(AppState *state, Stack *stack, u8 *step_wanted, const wchar_t *path) {
    // The status bar gets the path of the run before this one, so on the first run it shows nothing;
    // kept so, since that is what users of the status bar know.
    state->frontend->set_status(state, STATUS_PROCESS, wstring_text(state->process_path));
    wstring_free(state->process_path);
    state->process_path = wstring_copy(path);
    stack_free(state->stack);
    state->stack = stack;
    images_free(state);
    images_create(state, stack->steps->count);
    state->step_wanted = step_wanted;
    state->export_run = export_run_create(state);
}

static i32 cancel_run() {
    console_append(L"Run process canceled");
    console_append(L"\r\n");
    console_append(L"\r\n");
    diagnostics_show();
    return 1;
}

// Said at the start of the program as well, but then the console has been emptied since.
static void tell_incomplete_shaders(const AppState *state) {
    const ShaderProgram *surface = state->surface_program;
    const ShaderProgram *point = state->point_program;
    if ((surface != nullptr && surface->incomplete) || (point != nullptr && point->incomplete)) {
        diagnostic_write(
            L"memory was lacking when the shader files were read: the pictures may be wrong; start Quarn "
            L"anew");
    }
}

// Hands the OpenGL context over and starts the worker. Returns 0, or 1 when the system gives no thread.
static i32 start_worker(AppState *state) {
    tell_incomplete_shaders(state);
    diagnostics_show();
    console_append(L"Running process ...");
    console_append(L"\r\n\r\n");
    if (state->worker_thread != nullptr) {
        platform_thread_join(state->worker_thread);  // of the previous run, which has told its end
    }
    if (state->gl_context != nullptr) {
        platform_gl_make_current(nullptr);
    }
    picture_wish_apply(state);
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

// The flags of the steps whose pictures are asked for, in *wanted; null for all of them. False when the list
// of them names what there is not.
static bool choose_steps(const AppState *state, const Stack *stack, Owned<u8[]> *wanted) {
    if (state->step_list == nullptr) {
        return true;
    }
    *wanted = memory_scratch_zeroed<u8>(stack->steps->count);
    return step_choice_mark(state->step_list, stack, wanted->get());
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
    progress_show(L"setting up the section");
    Owned<Stack> stack(stack_create(wstring_text(path.get()), state->layout, state->section));
    progress_clear();
    Owned<u8[]> wanted;
    if (stack == nullptr || !choose_steps(state, stack.get(), &wanted) ||
        !dumps_allow_run(state, stack.get())) {
        return cancel_run();
    }
    replace_run(state, stack.release(), wanted.release(), wstring_text(path.get()));
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
