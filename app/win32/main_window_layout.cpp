#include "app/win32/main_window_layout.h"

#include <cassert>

#include "app/presentation.h"
#include "app/win32/main_window.h"
#include "platform/thread_role.h"

void main_window_layout(AppState *state, HWND main_window) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    HWND status_bar = GetDlgItem(main_window, CHILD_STATUS_BAR);
    SendMessageW(status_bar, WM_SIZE, 0, 0);  // it places itself along the lower edge
    RECT client = {};
    GetClientRect(main_window, &client);
    RECT status = {};
    GetWindowRect(status_bar, &status);

    const i32 width = client.right - client.left;
    const i32 height = client.bottom - client.top;
    const i32 render_height = render_area_height(height);
    state->render_width = width;
    state->render_height = render_height;
    MoveWindow(GetDlgItem(main_window, CHILD_RENDER), 0, 0, width, render_height, TRUE);
    const i32 console_height = height - render_height - (status.bottom - status.top);
    MoveWindow(GetDlgItem(main_window, CHILD_CONSOLE), 0, render_height, width, console_height, TRUE);
}
