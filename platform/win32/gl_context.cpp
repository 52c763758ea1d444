// The OpenGL context over WGL: of a window that is shown, or of a hidden one of its own. The pixel format
// and the plain call give a compatibility context, since text and colour fields are drawn with
// fixed-function calls.
#include <GL/glew.h>
#include <windows.h>

#include <GL/wglew.h>

#include <cassert>

#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/win32/window_gl.h"

struct PlatformGl {
    HWND window;
    HDC device;  // the window's own, held as long as the context
    HGLRC context;
    bool owns_window;
};

static const wchar_t *const HIDDEN_CLASS = L"QuarnHiddenClass";

// The pixel format that every window of the program gets.
static bool set_pixel_format(HDC device) {
    PIXELFORMATDESCRIPTOR wanted = {};
    static_assert(sizeof(wanted) == 40, "the system knows the descriptor by its size");
    wanted.nSize = sizeof(wanted);
    wanted.nVersion = 1;
    wanted.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER | PFD_GENERIC_ACCELERATED |
                     PFD_SUPPORT_COMPOSITION;
    wanted.iPixelType = PFD_TYPE_RGBA;
    wanted.cColorBits = 32;
    wanted.cDepthBits = 32;
    wanted.cStencilBits = 8;
    const int format = ChoosePixelFormat(device, &wanted);
    return format != 0 && SetPixelFormat(device, format, &wanted) != FALSE;
}

// Loads the entry points of the context that is current. Returns null, or why not.
static const wchar_t *load_entry_points() {
    glewExperimental = GL_TRUE;
    if (glewInit() != GLEW_OK || wglewInit() != GLEW_OK) {
        return L"the OpenGL entry points could not be loaded";
    }
    return nullptr;
}

// Makes the context of gl->window current. Returns null, or why not.
static const wchar_t *make_context(PlatformGl *gl) {
    gl->device = GetDC(gl->window);
    if (gl->device == nullptr) {
        return L"the window has no device context";
    }
    if (!set_pixel_format(gl->device)) {
        return L"the graphics driver has no pixel format with OpenGL";
    }
    gl->context = wglCreateContext(gl->device);
    if (gl->context == nullptr) {
        return L"the graphics driver refused an OpenGL context";
    }
    if (wglMakeCurrent(gl->device, gl->context) == FALSE) {
        return L"the OpenGL context could not be made current";
    }
    return load_entry_points();
}

static PlatformGl *create(HWND window, bool owns_window, const wchar_t **reason) {
    Owned<PlatformGl> gl(memory_new_zeroed<PlatformGl>());
    gl->window = window;
    gl->owns_window = owns_window;
    const wchar_t *failure =
        window != nullptr ? make_context(gl.get()) : L"no hidden window could be created";
    if (failure == nullptr && !GLEW_VERSION_3_0) {
        failure = L"the graphics driver has no OpenGL 3.0";
    }
    if (reason != nullptr) {
        *reason = failure;
    }
    return failure == nullptr ? gl.release() : nullptr;
}

PlatformGl *window_gl_create(void *window, const wchar_t **reason) {
    assert(window != nullptr);
    return create(static_cast<HWND>(window), false, reason);
}

void *window_gl_context(const PlatformGl *gl) {
    assert(gl != nullptr);
    return gl->context;
}

// A window that is never shown. Null on failure.
static HWND hidden_window() {
    HINSTANCE instance = GetModuleHandleW(nullptr);
    WNDCLASSW window_class = {};
    window_class.style = CS_OWNDC;
    window_class.lpfnWndProc = DefWindowProcW;
    window_class.hInstance = instance;
    window_class.lpszClassName = HIDDEN_CLASS;
    RegisterClassW(&window_class);  // fails when it is registered already, which is as good
    return CreateWindowExW(0, HIDDEN_CLASS, L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, instance, nullptr);
}

PlatformGl *platform_gl_create_offscreen(const wchar_t **reason) {
    return create(hidden_window(), true, reason);
}

bool platform_gl_make_current(PlatformGl *gl) {
    if (gl != nullptr) {
        return wglMakeCurrent(gl->device, gl->context) != FALSE;
    }
    // Releasing where nothing is current is a failure for some drivers.
    return wglGetCurrentContext() == nullptr || wglMakeCurrent(nullptr, nullptr) != FALSE;
}

void platform_gl_swap(PlatformGl *gl) {
    assert(gl != nullptr);
    SwapBuffers(gl->device);
}

void platform_gl_free(PlatformGl *gl) {
    if (gl == nullptr) {
        return;
    }
    if (gl->context != nullptr) {
        if (wglGetCurrentContext() == gl->context) {
            wglMakeCurrent(nullptr, nullptr);
        }
        wglDeleteContext(gl->context);
    }
    if (gl->device != nullptr) {
        ReleaseDC(gl->window, gl->device);
    }
    if (gl->owns_window && gl->window != nullptr) {
        DestroyWindow(gl->window);
    }
    memory_free(gl);
}

const void *platform_gl_identity() {
    return wglGetCurrentContext();
}

bool platform_gl_is_current() {
    return wglGetCurrentContext() != nullptr;
}
