#include "app/win32/render_window.h"

#include <windows.h>
// After windows.h, whose types it would else declare anew.
#include <GL/glew.h>

#include <cassert>

#include "app/presentation.h"
#include "app/win32/picture_menu.h"
#include "app/win32/win32_desktop.h"
#include "log/log.h"
#include "platform/thread_role.h"
#include "platform/win32/window_gl.h"

static bool register_class(HINSTANCE instance) {
    WNDCLASSEXW window_class = {};
    window_class.cbSize = sizeof(window_class);
    window_class.style = CS_VREDRAW | CS_HREDRAW | CS_OWNDC;
    window_class.lpfnWndProc = render_window_proc;
    window_class.hInstance = instance;
    window_class.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    window_class.lpszClassName = RENDER_CLASS;
    return RegisterClassExW(&window_class) != 0;
}

i32 render_window_create(AppState *state, HWND parent) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr && parent != nullptr);
    HINSTANCE instance = GetModuleHandleW(nullptr);
    log_write(L"Register the render window");
    if (!register_class(instance)) {
        message_show(L"Main window class registration failed");  // the words of the main window's, kept
        return -1;
    }
    // Its size comes with the first layout.
    HWND window =
        CreateWindowExW(0, RENDER_CLASS, nullptr, WS_CHILD | WS_VISIBLE | WS_BORDER, 0, 0, 0, 0, parent,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(CHILD_RENDER)), instance, state);
    if (window == nullptr) {
        message_show(L"Creating render window failed");
        return -1;
    }
    state->render_window = window;
    return 0;
}

static bool has_picture(const AppState *state) {
    return state->image_count >= 1 && state->current_image < state->image_count &&
           state->images[state->current_image] != nullptr;
}

// A device context besides the window's own, into which the worker may be making fonts at this moment; freed
// with ReleaseDC.
static HDC shared_context(HWND window) {
    return GetDCEx(window, nullptr, DCX_CACHE);
}

static void fill_white(HWND window) {
    log_write(L"No bitmap to render");
    RECT update = {};
    GetUpdateRect(window, &update, FALSE);
    HDC context = shared_context(window);
    FillRect(context, &update, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    ReleaseDC(window, context);
}

void render_window_draw(const AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW));
    const PixelImage *scaled = shown_picture(state);
    if (scaled == nullptr) {
        return;
    }
    const PixelImage *image = state->images[state->current_image];
    const PicturePlace place =
        picture_place(image->width, image->height, state->render_width, state->render_height);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glUseProgram(0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glWindowPos2i(place.x, place.y);
    // The alignment is that of reading back. That of drawing would do nothing either: pixels of four
    // bytes keep every row aligned.
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    glDrawPixels(scaled->width, scaled->height, GL_BGRA, GL_UNSIGNED_BYTE, scaled->pixels);
}

static void show_picture(const AppState *state, HWND window) {
    render_window_draw(state);
    HDC context = GetDC(window);
    SwapBuffers(context);
    ReleaseDC(window, context);
}

// Paints with the OpenGL context, which is given back as it was found: during a run this thread holds
// none before and after. False, and nothing is painted, when the context cannot be had.
static bool paint_with_context(const AppState *state, HWND window) {
    HGLRC previous = wglGetCurrentContext();
    HDC context = GetDC(window);
    const bool current =
        wglMakeCurrent(context, static_cast<HGLRC>(window_gl_context(state->gl_context))) != FALSE;
    if (current) {
        if (has_picture(state)) {
            show_picture(state, window);
        } else {
            fill_white(window);
        }
        wglMakeCurrent(context, previous);
    }
    ReleaseDC(window, context);
    return current;
}

// While the worker holds the context, or when it was lost: the window would else keep whatever is there,
// which is black after it was minimised or covered.
static void paint_without_context(const AppState *state, HWND window) {
    if (!has_picture(state)) {
        fill_white(window);
        return;
    }
    HDC context = shared_context(window);
    shown_picture_paint(state, context);
    ReleaseDC(window, context);
}

static void on_paint(const AppState *state, HWND window) {
    if (state->gl_context != nullptr && !message_box_is_last()) {
        bool painted = false;
        if (paint_gate_enter(state)) {
            painted = paint_with_context(state, window);
            paint_gate_leave();
        }
        if (!painted) {
            paint_without_context(state, window);
        }
    }
    ValidateRect(window, nullptr);
}

// The title comes last, since it takes no time where the picture takes some.
void render_window_show(const AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    RedrawWindow(static_cast<HWND>(state->render_window), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    if (has_picture(state)) {
        SetWindowTextW(static_cast<HWND>(state->main_window),
                       wstring_text(state->images[state->current_image]->title));
    }
}

void render_window_repaint(const AppState *state) {
    assert(thread_role_fits(THREAD_WORKER) && state != nullptr);
    paint_gate_open();
    SendMessageW(static_cast<HWND>(state->main_window), WM_APP_SHOW_PICTURE, 0, 0);
    paint_gate_close();
}

LRESULT CALLBACK render_window_proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_CREATE) {
        const auto *create = reinterpret_cast<const CREATESTRUCTW *>(lparam);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    } else if (message == WM_PAINT) {
        on_paint(reinterpret_cast<const AppState *>(GetWindowLongPtrW(window, GWLP_USERDATA)), window);
        return 0;
    } else if (message == WM_CONTEXTMENU) {
        picture_menu_open(reinterpret_cast<const AppState *>(GetWindowLongPtrW(window, GWLP_USERDATA)),
                          lparam);
        return 0;
    }
    return DefWindowProcW(window, message, wparam, lparam);
}
