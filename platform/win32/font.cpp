// Bitmap fonts: GDI draws the characters of Arial, and WGL makes display lists of them.
#include <GL/glew.h>
#include <windows.h>

#include <cassert>

#include "platform/platform.h"

static constexpr DWORD CHARACTER_COUNT = 255;
static constexpr i32 MOST_ERRORS = 512;  // a list may leave two

// The lists without a font: present and empty.
static void compile_empty_lists(u32 list_base) {
    for (u32 character = 0; character < CHARACTER_COUNT; ++character) {
        glNewList(list_base + character, GL_COMPILE);
        glEndList();
    }
}

// Compiles the lists of the characters without ink anew: with some drivers those that the system makes fail,
// and do not advance.
static void compile_blanks(HDC device, u32 list_base) {
    const MAT2 upright = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
    const GLubyte nothing = 0;
    for (u32 character = 0; character < CHARACTER_COUNT; ++character) {
        GLYPHMETRICS glyph = {};
        if (GetGlyphOutlineW(device, character, GGO_BITMAP, &glyph, 0, nullptr, &upright) == 0) {
            glNewList(list_base + character, GL_COMPILE);
            glBitmap(0, 0, 0.0F, 0.0F, static_cast<f32>(glyph.gmCellIncX), 0.0F, &nothing);
            glEndList();
        }
    }
}

// Those of lists that failed: text that is missing spoils no picture. A context that is lost has errors
// without end.
static void forget_errors() {
    for (i32 i = 0; i < MOST_ERRORS && glGetError() != GL_NO_ERROR; ++i) {
    }
}

// Makes the lists from the font selected into the device context and reads its metrics.
static bool make_lists(HDC device, u32 list_base, PlatformFontMetrics *metrics) {
    TEXTMETRICW measures = {};
    if (wglUseFontBitmapsW(device, 0, CHARACTER_COUNT, list_base) == FALSE ||
        GetTextMetricsW(device, &measures) == FALSE) {
        return false;
    }
    compile_blanks(device, list_base);
    metrics->height = measures.tmHeight;
    metrics->avg_char_width = measures.tmAveCharWidth;
    return true;
}

bool platform_font_lists(u32 list_base, i32 height, i32 weight, PlatformFontMetrics *metrics) {
    assert(metrics != nullptr);
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
    if (device != nullptr) {
        forget_errors();
    }
    return made;
}
