// The OpenGL context over EGL: without any display server where the driver can do that (a software
// renderer is enough), else on the default display. A compatibility context, since text and colour
// fields are drawn with fixed-function calls. Each context has a hidden 1 x 1 surface where the driver
// has one to give, so that the default framebuffer is complete.
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/glew.h>

#include <cassert>
#include <cstring>
#include <mutex>

#include "platform/memory.h"
#include "platform/platform.h"

struct PlatformGl {
    EGLDisplay display;
    EGLContext context;
    EGLSurface surface;  // EGL_NO_SURFACE where the context needs none
};

static bool has_extension(EGLDisplay display, const char *name) {
    const char *list = eglQueryString(display, EGL_EXTENSIONS);
    const size_t length = std::strlen(name);
    for (const char *at = list; at != nullptr && (at = std::strstr(at, name)) != nullptr; at += length) {
        const bool starts = at == list || at[-1] == ' ';
        if (starts && (at[length] == ' ' || at[length] == 0)) {
            return true;
        }
    }
    return false;
}

static EGLDisplay initialized(EGLDisplay display) {
    return display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr) == EGL_TRUE ? display
                                                                                             : EGL_NO_DISPLAY;
}

static EGLDisplay open_display() {
    EGLDisplay display = EGL_NO_DISPLAY;
    if (has_extension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless")) {
        auto get_display =
            reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
        if (get_display != nullptr) {
            display = initialized(get_display(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr));
        }
    }
    return display != EGL_NO_DISPLAY ? display : initialized(eglGetDisplay(EGL_DEFAULT_DISPLAY));
}

// The display serves every context and stays open to the end of the program: EGL does not count its
// users, and terminating it would take the contexts of all with it. A failure is tried again.
static EGLDisplay shared_display() {
    static std::mutex mutex;
    static EGLDisplay display = EGL_NO_DISPLAY;
    const std::lock_guard<std::mutex> lock(mutex);
    if (display == EGL_NO_DISPLAY) {
        display = open_display();
    }
    return display;
}

static bool choose_config(EGLDisplay display, EGLint surface_type, EGLConfig *config) {
    const EGLint wanted[] = {EGL_SURFACE_TYPE,
                             surface_type,
                             EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_BIT,
                             EGL_RED_SIZE,
                             8,
                             EGL_GREEN_SIZE,
                             8,
                             EGL_BLUE_SIZE,
                             8,
                             EGL_NONE};
    EGLint count = 0;
    return eglChooseConfig(display, wanted, config, 1, &count) == EGL_TRUE && count > 0;
}

// Makes context and surface on gl->display. Returns null, or why not.
static const wchar_t *make_context(PlatformGl *gl) {
    if (eglBindAPI(EGL_OPENGL_API) != EGL_TRUE) {
        return L"the graphics driver has no desktop OpenGL";
    }
    EGLConfig config = nullptr;
    const bool with_surface = choose_config(gl->display, EGL_PBUFFER_BIT, &config);
    if (!with_surface) {
        if (!has_extension(gl->display, "EGL_KHR_surfaceless_context") ||
            !choose_config(gl->display, 0, &config)) {
            return L"the graphics driver can neither draw without a window nor into a hidden one";
        }
    }
    gl->context = eglCreateContext(gl->display, config, EGL_NO_CONTEXT, nullptr);
    if (gl->context == EGL_NO_CONTEXT) {
        return L"the graphics driver refused an OpenGL context";
    }
    if (with_surface) {
        const EGLint size[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
        gl->surface = eglCreatePbufferSurface(gl->display, config, size);
        if (gl->surface == EGL_NO_SURFACE) {
            return L"the graphics driver refused a hidden drawing surface";
        }
    }
    return nullptr;
}

// Loads the entry points of the context that is current. Returns null, or why not.
static const wchar_t *load_entry_points() {
    glewExperimental = GL_TRUE;
    const GLenum code = glewInit();
    // Without a GLX display only the window-system part of the loader is missing; nothing here uses it.
    if (code != GLEW_OK && code != GLEW_ERROR_NO_GLX_DISPLAY) {
        return L"the OpenGL entry points could not be loaded";
    }
    if (!GLEW_VERSION_3_0) {
        return L"the graphics driver has no OpenGL 3.0";
    }
    GLint profile = 0;
    if (GLEW_VERSION_3_2) {
        glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    }
    if ((profile & GL_CONTEXT_CORE_PROFILE_BIT) != 0) {
        return L"the graphics driver has no OpenGL compatibility profile";
    }
    return nullptr;
}

PlatformGl *platform_gl_create_offscreen(const wchar_t **reason) {
    Owned<PlatformGl> gl(memory_new_zeroed<PlatformGl>());
    gl->context = EGL_NO_CONTEXT;
    gl->surface = EGL_NO_SURFACE;
    gl->display = shared_display();
    const wchar_t *failure = nullptr;
    if (gl->display == EGL_NO_DISPLAY) {
        failure = L"no graphics driver that draws without a display, and no display";
    }
    if (failure == nullptr) {
        failure = make_context(gl.get());
    }
    if (failure == nullptr && !platform_gl_make_current(gl.get())) {
        failure = L"the OpenGL context could not be made current";
    }
    if (failure == nullptr) {
        failure = load_entry_points();
    }
    if (reason != nullptr) {
        *reason = failure;
    }
    return failure == nullptr ? gl.release() : nullptr;
}

bool platform_gl_make_current(PlatformGl *gl) {
    if (gl != nullptr) {
        return eglMakeCurrent(gl->display, gl->surface, gl->surface, gl->context) == EGL_TRUE;
    }
    EGLDisplay display = eglGetCurrentDisplay();
    return display == EGL_NO_DISPLAY ||
           eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT) == EGL_TRUE;
}

// An offscreen context has no window to show.
void platform_gl_swap(PlatformGl *gl) {
    assert(gl != nullptr);
    static_cast<void>(gl);
}

void platform_gl_free(PlatformGl *gl) {
    if (gl == nullptr) {
        return;
    }
    if (gl->context != EGL_NO_CONTEXT && eglGetCurrentContext() == gl->context) {
        platform_gl_make_current(nullptr);
    }
    if (gl->surface != EGL_NO_SURFACE) {
        eglDestroySurface(gl->display, gl->surface);
    }
    if (gl->context != EGL_NO_CONTEXT) {
        eglDestroyContext(gl->display, gl->context);
    }
    memory_free(gl);
}

const void *platform_gl_identity() {
    return eglGetCurrentContext();
}

bool platform_gl_is_current() {
    return eglGetCurrentContext() != EGL_NO_CONTEXT;
}
