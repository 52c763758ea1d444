// What the commands and the worker ask of the window.
#include "app/frontend.h"
#include "app/win32/file_dialog.h"
#include "app/win32/main_window.h"
#include "app/win32/menu_bar.h"
#include "app/win32/render_window.h"
#include "app/win32/status_bar.h"

static HWND main_window_of(const AppState *state) {
    return static_cast<HWND>(state->main_window);
}

WString *frontend_choose_file(AppState *state, FileKind kind) {
    return file_dialog_open(main_window_of(state), kind);
}

WString *frontend_choose_folder(AppState *, const wchar_t *) {
    return nullptr;
}

void frontend_paint_now(AppState *) {}

void frontend_set_title(AppState *state, const wchar_t *title) {
    SetWindowTextW(main_window_of(state), title);
}

void frontend_set_status(AppState *state, StatusPart part, const wchar_t *text) {
    status_bar_set_text(static_cast<HWND>(state->status_bar), part, text);
}

void frontend_menu_enable(AppState *state, MenuCommand command, bool enabled) {
    menu_bar_enable(main_window_of(state), command, enabled);
}

void frontend_menu_redraw(AppState *state) {
    menu_bar_redraw(main_window_of(state));
}

void frontend_repaint(AppState *state) {
    render_window_repaint(state);
}

void frontend_run_done(AppState *state) {
    SendMessageW(main_window_of(state), WM_APP_RUN_DONE, 0, 0);
}
