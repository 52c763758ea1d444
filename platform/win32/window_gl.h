// window_gl.h: the OpenGL context of a window that is shown. The functions of platform.h work on it too.
#pragma once
#include "platform/platform.h"

// Gives the window its pixel format, creates a context for it, makes that current on this thread and
// loads the OpenGL entry points.
//   window   handle of a window of a class with a device context of its own (CS_OWNDC); it must live
//            as long as the context
//   reason   may be null; receives why it failed, a static text, or null
// Returns null on failure, with no context current; the caller frees with platform_gl_free.
PlatformGl *window_gl_create(void *window, const wchar_t **reason);

// The window's rendering context (HGLRC), for calls of the system's own.
void *window_gl_context(const PlatformGl *gl);
