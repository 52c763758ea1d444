#include "app/win32/main_window.h"

#include <algorithm>
#include <cassert>

#include "app/commands.h"
#include "app/startup.h"
#include "app/win32/main_window_children.h"
#include "app/win32/main_window_layout.h"
#include "app/win32/picture_menu.h"
#include "app/win32/render_window.h"
#include "app/win32/win32_desktop.h"
#include "app/window_texts.h"
#include "log/log.h"
#include "platform/thread_role.h"

// Pixels at 100 %.
static constexpr i32 ICON_SIDE = 32;
static constexpr i32 SMALL_ICON_SIDE = 16;

// Null without the file.
static HICON load_icon(const wchar_t *path, i32 side, UINT flags) {
    const int scaled = window_scaled(side);
    return static_cast<HICON>(LoadImageW(nullptr, path, IMAGE_ICON, scaled, scaled, flags));
}

static bool register_class(HINSTANCE instance, const wchar_t *icon_path) {
    WNDCLASSEXW window_class = {};
    window_class.cbSize = sizeof(window_class);
    window_class.style = CS_OWNDC;
    window_class.lpfnWndProc = main_window_proc;
    window_class.hInstance = instance;
    const UINT shared = LR_LOADFROMFILE | LR_DEFAULTSIZE | LR_SHARED;
    window_class.hIcon = load_icon(icon_path, ICON_SIDE, shared);
    window_class.hIconSm = load_icon(icon_path, SMALL_ICON_SIDE, LR_LOADFROMFILE);
    g_desktop->main.small_icon = window_class.hIconSm;
    window_class.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    window_class.lpszClassName = MAIN_CLASS;
    return RegisterClassExW(&window_class) != 0;
}

i32 main_window_create(HINSTANCE instance, AppState *state, const wchar_t *icon_path) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr && icon_path != nullptr);
    g_desktop->main = {};
    log_write(L"Register the main window");
    if (!register_class(instance, icon_path)) {
        message_show(L"Main window class registration failed");
        return 1;
    }
    const int screen_width = GetSystemMetrics(SM_CXSCREEN);
    const int screen_height = GetSystemMetrics(SM_CYSCREEN);
    const int width = std::min(screen_width, window_scaled(WINDOW_WIDTH));
    const int height = std::min(screen_height, window_scaled(WINDOW_HEIGHT));
    log_write(L"Start creating the main window");
    // Its size is fixed: the layout of the children and of the status bar's fields relies on it.
    HWND window =
        CreateWindowExW(0, MAIN_CLASS, nullptr, WS_SYSMENU | WS_MINIMIZEBOX, (screen_width - width) / 2,
                        (screen_height - height) / 2, width, height, nullptr, nullptr, instance, state);
    if (window == nullptr) {
        state->main_window = nullptr;  // set while its creation was under way
        message_show(L"Main window creation failed");
        return 1;
    }
    return 0;
}

void main_window_show(AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW) && state->main_window != nullptr);
    auto *window = static_cast<HWND>(state->main_window);
    menu_update(state);
    log_write(L"Main window created");
    ShowWindow(window, SW_SHOW);
    SetWindowTextA(window, PROGRAM_NAME);
    log_write(L"Main window shown");
}

void main_window_destroy(HINSTANCE instance, AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW));
    platform_gl_free(state->gl_context);
    state->gl_context = nullptr;
    g_desktop->main.window = nullptr;
    if (state->main_window != nullptr) {
        DestroyWindow(static_cast<HWND>(state->main_window));
    }
    state->main_window = nullptr;
    state->render_window = nullptr;
    state->status_bar = nullptr;
    g_desktop->console.control = nullptr;
    console_window_free();
    status_bar_free();
    shown_picture_free();
    open_files_free();
    UnregisterClassW(RENDER_CLASS, instance);
    UnregisterClassW(MAIN_CLASS, instance);
    if (g_desktop->main.console_brush != nullptr) {
        DeleteObject(g_desktop->main.console_brush);
    }
    if (g_desktop->main.small_icon != nullptr) {
        DestroyIcon(g_desktop->main.small_icon);
    }
    g_desktop->main = {};
}

static LRESULT on_create(HWND window, LPARAM lparam) {
    const auto *create = reinterpret_cast<const CREATESTRUCTW *>(lparam);
    assert(g_app == create->lpCreateParams);  // as app_start has set it
    g_desktop->main.console_brush = CreateSolidBrush(RGB(255, 255, 255));
    return main_window_create_children(static_cast<AppState *>(create->lpCreateParams), window);
}

// The arrow keys must reach the main window wherever the user has clicked in it. When the focus goes to
// a dialog or to another program the window is no longer the active one, and taking the focus back would
// make the dialog unusable; the window gets it again when it is activated.
static void on_focus_lost(HWND window) {
    if (GetActiveWindow() == window) {
        SetFocus(window);
    }
}

static void end_program() {
    g_desktop->main.ended = true;
    PostQuitMessage(0);
}

static void on_close(AppState *state) {
    if (!g_desktop->main.ended && app_close(state) != 0) {
        end_program();
    }
}

// What was painted without the OpenGL context is painted with it.
static void on_run_done(AppState *state) {
    if (run_done(state) != 0) {
        end_program();
    } else {
        RedrawWindow(static_cast<HWND>(state->render_window), nullptr, nullptr,
                     RDW_INVALIDATE | RDW_UPDATENOW);
    }
}

static void on_move_started(AppState *state) {
    state->sizing = 1;
    g_desktop->main.run_before_move = state->run_number;
    g_desktop->main.images_before_move = state->image_count;
}

// Pictures that came meanwhile were kept and not shown; the newest one is shown here.
static void on_move_ended(AppState *state) {
    state->sizing = 0;
    const MainWindow *main = &g_desktop->main;
    const i32 shown = state->run_number == main->run_before_move ? main->images_before_move : 0;
    const i32 count = state->image_count;
    if (count > shown) {
        state->current_image = count - 1;
        render_window_show(state);
    }
}

// The window does not clip its children, so that what is invalid in it is so in the render window too.
static void on_key(AppState *state, HWND window, WPARAM key) {
    if (key == 'C' && GetKeyState(VK_CONTROL) < 0) {
        // The console shows what is marked in it, and never has the focus.
        SendMessageW(g_desktop->console.control, WM_COPY, 0, 0);
    }
    if (key != VK_LEFT && key != VK_RIGHT) {
        return;
    }
    if (browse_images(state, key == VK_LEFT ? -1 : 1) != 0) {
        InvalidateRect(window, nullptr, TRUE);
        UpdateWindow(window);
    }
}

// Returns whether it was a command of the menu.
static bool on_command(AppState *state, WORD id) {
    return !g_desktop->main.ended && window_command(state, id);
}

// Returns whether it was a message of the program's own.
static bool on_own_message(AppState *state, UINT message, LPARAM lparam) {
    switch (message) {
        case WM_APP_RUN_DONE: on_run_done(state); return true;
        case WM_APP_CONSOLE_APPEND:
            console_window_append(reinterpret_cast<const wchar_t *>(lparam));
            return true;
        case WM_APP_SHOW_PICTURE: render_window_show(state); return true;
        case WM_APP_OPEN_FILES:
            if (!g_desktop->main.ended) {
                open_files_now(state);
            }
            return true;
        default: return false;
    }
}

// The console gives a turn of the wheel that it has no use for back to its parent, which ends here.
static void on_wheel(WPARAM wparam, LPARAM lparam) {
    if (!g_desktop->main.forwards_wheel) {
        g_desktop->main.forwards_wheel = true;
        SendMessageW(g_desktop->console.control, WM_MOUSEWHEEL, wparam, lparam);
        g_desktop->main.forwards_wheel = false;
    }
}

LRESULT CALLBACK main_window_proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    AppState *state = g_app;
    if (message == WM_CREATE) {
        return on_create(window, lparam);
    }
    if (state == nullptr) {  // the program is ending
        return DefWindowProcW(window, message, wparam, lparam);
    }
    switch (message) {
        case WM_SIZE: main_window_layout(state, window); return 0;
        case WM_KILLFOCUS: on_focus_lost(window); return 0;
        case WM_CLOSE: on_close(state); return 0;
        case WM_KEYDOWN: on_key(state, window, wparam); return 0;
        case WM_COMMAND:
            if (on_command(state, LOWORD(wparam))) {
                return 0;
            }
            break;
        case WM_CTLCOLORSTATIC:
            return console_window_colors(reinterpret_cast<HDC>(wparam), reinterpret_cast<HWND>(lparam),
                                         g_desktop->main.console_brush);
        case WM_LBUTTONDOWN: SetFocus(window); return 0;
        case WM_MOUSEWHEEL: on_wheel(wparam, lparam); return 0;
        case WM_ENTERSIZEMOVE: on_move_started(state); return 0;
        case WM_EXITSIZEMOVE: on_move_ended(state); return 0;
        case WM_CONTEXTMENU:
            if (lparam == -1) {  // by a key: the focus is always here
                picture_menu_open(state, lparam);
                return 0;
            }
            break;
        case WM_DROPFILES:
            open_files_dropped(state, reinterpret_cast<HDROP>(wparam));  // NOLINT(performance-no-int-to-ptr)
            return 0;
        default:
            if (on_own_message(state, message, lparam)) {
                return 0;
            }
            break;
    }
    return DefWindowProcW(window, message, wparam, lparam);
}
