// Bitmap fonts: GDI draws the characters of Arial, and WGL makes display lists of them.
#include <GL/glew.h>
#include <windows.h>

#include "platform/platform.h"

static constexpr DWORD CHARACTER_COUNT = 255;

// The lists without a font: present and empty.
static void compile_empty_lists(u32 list_base) {
    for (u32 character = 0; character < CHARACTER_COUNT; ++character) {
        glNewList(list_base + character, GL_COMPILE);
        glEndList();
    }
}

// Makes the lists from the font selected into the device context and reads its metrics.
static bool make_lists(HDC device, u32 list_base, PlatformFontMetrics *metrics) {
    TEXTMETRICW measures = {};
    if (wglUseFontBitmapsW(device, 0, CHARACTER_COUNT, list_base) == FALSE ||
        GetTextMetricsW(device, &measures) == FALSE) {
        return false;
    }
    // The system's own list making leaves an error behind for characters without ink on some drivers.
    while (glGetError() != GL_NO_ERROR) {
    }
    metrics->height = measures.tmHeight;
    metrics->avg_char_width = measures.tmAveCharWidth;
    return true;
}

bool platform_font_lists(u32 list_base, i32 height, i32 weight, PlatformFontMetrics *metrics) {
    metrics->height = height < 1 ? 1 : height;
    metrics->avg_char_width = (metrics->height * 2 + 2) / 5;  // what common sans-serif faces have
    HDC device = wglGetCurrentDC();
    HFONT font = CreateFontA(metrics->height, 0, 0, 0, weight, FALSE, FALSE, FALSE, ANSI_CHARSET,
                             OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY, DEFAULT_PITCH, "Arial");
    bool made = false;
    if (device != nullptr && font != nullptr) {
        HGDIOBJ previous = SelectObject(device, font);
        made = previous != nullptr && make_lists(device, list_base, metrics);
        if (previous != nullptr) {
            SelectObject(device, previous);
        }
    }
    if (font != nullptr) {
        DeleteObject(font);
    }
    if (!made) {
        compile_empty_lists(list_base);
    }
    return made;
}
