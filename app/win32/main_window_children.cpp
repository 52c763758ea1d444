#include "app/win32/main_window_children.h"

#include <windows.h>
// After windows.h, which names the types that this one is written in.
#include <shellapi.h>

#include <cassert>

#include "app/commands.h"
#include "app/win32/menu_bar.h"
#include "app/win32/render_window.h"
#include "app/win32/win32_desktop.h"
#include "log/log.h"
#include "platform/thread_role.h"
#include "platform/win32/window_gl.h"
#include "render/scene.h"

// The one OpenGL context, current on this thread from here on. Returns 0, or -1 after telling why.
static i32 start_graphics(AppState *state) {
    const wchar_t *reason = L"";
    state->gl_context = window_gl_create(state->render_window, &reason);
    if (state->gl_context == nullptr) {
        diagnostic_write(L"OpenGL: %ls", reason);
        message_show(L"Could not initialize graphics");
        return -1;
    }
    render_state_init();
    log_write(L"OpenGL Initialized");
    return 0;
}

LRESULT main_window_create_children(AppState *state, HWND main_window) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr && main_window != nullptr);
    state->main_window = main_window;
    if (render_window_create(state, main_window) != 0 || console_window_create(main_window) != 0) {
        return -1;
    }
    HWND status_bar = status_bar_create(main_window);
    if (status_bar == nullptr) {
        return -1;
    }
    state->status_bar = status_bar;
    menu_bar_create(main_window);
    if (start_graphics(state) != 0) {
        return -1;
    }
    DragAcceptFiles(main_window, TRUE);
    g_desktop->main.window = main_window;
    images_create(state, 0);
    return 0;
}
