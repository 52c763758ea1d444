#include "app/win32/window_scale.h"

#include <windows.h>

#include <cassert>

#include "app/win32/win32_desktop.h"
#include "platform/thread_role.h"

void window_scale_read() {
    assert(thread_role_fits(THREAD_WINDOW));
    HDC screen = GetDC(nullptr);
    const i32 dots_per_inch = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    g_desktop->scale.dots_per_inch = dots_per_inch > 0 ? dots_per_inch : SCALE_PLAIN_DPI;
}

i32 window_scaled(i32 pixels) {
    assert(thread_role_fits(THREAD_WINDOW) && pixels >= 0 && g_desktop->scale.dots_per_inch > 0);
    return MulDiv(pixels, g_desktop->scale.dots_per_inch, SCALE_PLAIN_DPI);
}
