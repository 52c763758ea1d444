#include "app/win32/win32_frontend.h"

#include <cassert>

#include "app/win32/console_window.h"
#include "app/win32/file_dialog.h"
#include "app/win32/main_window.h"
#include "app/win32/menu_bar.h"
#include "app/win32/message_box.h"
#include "app/win32/open_files.h"
#include "app/win32/render_window.h"
#include "app/win32/status_bar.h"
#include "platform/thread_role.h"

static HWND main_window_of(const AppState *state) {
    return static_cast<HWND>(state->main_window);
}

static WString *choose_file(AppState *state, FileKind kind) {
    WString *path = open_files_take(kind);
    if (path == nullptr) {
        path = file_dialog_open(main_window_of(state), kind);
    }
    if (path != nullptr) {
        file_dialog_remember_folder(wstring_text(path));
    }
    return path;
}

static WString *choose_folder(AppState *state, const wchar_t *failed) {
    return file_dialog_choose_folder(main_window_of(state), failed);
}

static bool open_file(AppState *state, const wchar_t *path) {
    const DWORD room = GetFullPathNameW(path, 0, nullptr, nullptr);
    const WideText full = memory_scratch_zeroed<wchar_t>(i64{room} + 1);
    GetFullPathNameW(path, room, full.get(), nullptr);
    // By its older custom the call gives a number above 32 where it succeeds.
    HINSTANCE result =
        ShellExecuteW(main_window_of(state), L"open", full.get(), nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(result) > 32;
}

// What is invalid is painted by the windows themselves; no message is taken from the queue, so that no
// command can start. The menu bar has been drawn when it changed.
static void paint_now(AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW));
    console_window_catch_up();
    RedrawWindow(main_window_of(state), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    GdiFlush();
}

// The worker names a picture before it has read it from the graphics, or while new pictures are not shown;
// the window gets the title together with the picture.
static void set_title(AppState *state, const wchar_t *title) {
    HWND window = main_window_of(state);
    if (GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId()) {
        SetWindowTextW(window, title);
    }
}

static void set_status(AppState *state, StatusPart part, const wchar_t *text) {
    assert(thread_role_fits(THREAD_WINDOW));
    status_bar_set_text(static_cast<HWND>(state->status_bar), part, text);
}

static void menu_enable(AppState *state, MenuCommand command, bool enabled) {
    menu_bar_enable(main_window_of(state), command, enabled);
}

static void menu_redraw(AppState *state) {
    menu_bar_redraw(main_window_of(state));
}

static void repaint(AppState *state) {
    render_window_repaint(state);
}

static void tell_run_done(AppState *state) {
    assert(thread_role_fits(THREAD_WORKER));
    SendMessageW(main_window_of(state), WM_APP_RUN_DONE, 0, 0);
}

// clang-format off
const Frontend WIN32_FRONTEND = {
    choose_file,
    choose_folder,
    open_file,
    paint_now,
    set_title,
    set_status,
    menu_enable,
    menu_redraw,
    repaint,
    tell_run_done,
    console_window_append,
    console_window_clear,
    message_box_show,
    nullptr,                          // diagnostic: to the log and the console
    nullptr,                          // diagnostic_early: the same, as there is no terminal
    nullptr,                          // progress: the pictures themselves show it
    message_box_show_memory_failure,
};
// clang-format on
