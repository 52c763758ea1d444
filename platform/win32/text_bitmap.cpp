// Uniscribe sets the text and finds faces for letters that Arial lacks; GDI draws it into a bitmap in memory.
#include "platform/text_bitmap.h"

#include <windows.h>
// After windows.h, which names the types that this one is written in.
#include <usp10.h>

#include <cassert>
#include <cwchar>

struct PlatformTextFace {
    HFONT font;  // null when the system refuses it
    i32 height;
};

PlatformTextFace *platform_text_face_create(i32 height, i32 weight) {
    auto *face = memory_new_zeroed<PlatformTextFace>();
    face->height = height < 1 ? 1 : height;
    face->font =
        CreateFontW(face->height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_TT_PRECIS,
                    CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY, DEFAULT_PITCH, L"Arial");
    return face;
}

void platform_text_face_free(PlatformTextFace *face) {
    if (face == nullptr) {
        return;
    }
    if (face->font != nullptr) {
        DeleteObject(face->font);
    }
    memory_free(face);
}

// A text set with a face on a device context of this thread, since one made here ends with its thread.
struct SetText {
    HDC device;
    HGDIOBJ previous_font;
    SCRIPT_STRING_ANALYSIS analysis;  // null where the text is empty or cannot be set
    i32 width, height;                // of the cells, pixels
};

static WideText without_controls(const wchar_t *text) {
    WideText clean = memory_scratch<wchar_t>(static_cast<i64>(std::wcslen(text)) + 1);
    i64 count = 0;
    for (; *text != 0; ++text) {
        const u32 unit = static_cast<u16>(*text);
        if (unit >= 0x20 && (unit < 0x7F || unit >= 0xA0)) {
            clean[count++] = *text;
        }
    }
    clean[count] = 0;
    return clean;
}

// The text must live as long as what is set of it.
static SetText set_text(const PlatformTextFace *face, const wchar_t *text) {
    SetText set = {};
    const i32 length = static_cast<i32>(std::wcslen(text));
    set.device = face->font != nullptr && length > 0 ? CreateCompatibleDC(nullptr) : nullptr;
    if (set.device == nullptr) {
        return set;
    }
    set.previous_font = SelectObject(set.device, face->font);
    const HRESULT result = ScriptStringAnalyse(set.device, text, length, length * 3 / 2 + 16, -1,
                                               SSA_GLYPHS | SSA_FALLBACK | SSA_LINK, 0, nullptr, nullptr,
                                               nullptr, nullptr, nullptr, &set.analysis);
    const SIZE *size = SUCCEEDED(result) ? ScriptString_pSize(set.analysis) : nullptr;
    if (size != nullptr) {
        set.width = size->cx;
        set.height = size->cy;
    }
    return set;
}

static void set_text_end(SetText *set) {
    if (set->analysis != nullptr) {
        ScriptStringFree(&set->analysis);
    }
    if (set->device != nullptr) {
        SelectObject(set->device, set->previous_font);
        DeleteDC(set->device);
    }
}

i32 platform_text_width(PlatformTextFace *face, const wchar_t *text) {
    assert(face != nullptr && text != nullptr);
    const WideText clean = without_controls(text);
    SetText set = set_text(face, clean.get());
    const i32 width = set.width;
    set_text_end(&set);
    return width;
}

// What a text was drawn into, white on black.
struct Sheet {
    const u8 *pixels;  // width x height x 4, bottom row first
    i32 width, height;
    i32 pen_x, pen_y;  // where the text starts on its baseline, pixels from the lower left corner
};

static u8 ink_at(const Sheet *sheet, i32 x, i32 y) {
    return sheet->pixels[(i64{y} * sheet->width + x) * 4 + 1];
}

// The part of a sheet that has ink.
static PlatformTextBitmap cut_ink(const Sheet *sheet) {
    i32 x_low = sheet->width;
    i32 x_high = -1;
    i32 y_low = sheet->height;
    i32 y_high = -1;
    for (i32 y = 0; y < sheet->height; ++y) {
        for (i32 x = 0; x < sheet->width; ++x) {
            if (ink_at(sheet, x, y) != 0) {
                x_low = x < x_low ? x : x_low;
                x_high = x > x_high ? x : x_high;
                y_low = y < y_low ? y : y_low;
                y_high = y;
            }
        }
    }
    PlatformTextBitmap bitmap = {};
    if (x_high < 0) {
        return bitmap;
    }
    bitmap.width = x_high - x_low + 1;
    bitmap.height = y_high - y_low + 1;
    bitmap.left = x_low - sheet->pen_x;
    bitmap.bottom = y_low - sheet->pen_y;
    bitmap.coverage = memory_scratch<u8>(i64{bitmap.width} * bitmap.height);
    for (i32 y = 0; y < bitmap.height; ++y) {
        for (i32 x = 0; x < bitmap.width; ++x) {
            bitmap.coverage[i64{y} * bitmap.width + x] = ink_at(sheet, x_low + x, y_low + y);
        }
    }
    return bitmap;
}

// Letters may reach beyond their cells; the sheet has a cell's height around them on each side.
static PlatformTextBitmap draw_set_text(const PlatformTextFace *face, const SetText *set) {
    const i32 border = face->height;
    const i32 width = set->width + 2 * border;
    const i32 height = set->height + 2 * border;
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;  // positive: bottom row first
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void *bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(set->device, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap == nullptr) {
        return {};  // a text that is missing spoils no picture
    }
    HGDIOBJ previous = SelectObject(set->device, bitmap);
    SetTextColor(set->device, RGB(255, 255, 255));
    SetBkMode(set->device, TRANSPARENT);
    TEXTMETRICW measures = {};
    GetTextMetricsW(set->device, &measures);
    ScriptStringOut(set->analysis, border, border, 0, nullptr, 0, 0, FALSE);
    GdiFlush();
    const Sheet sheet = {static_cast<const u8 *>(bits), width, height, border,
                         height - border - static_cast<i32>(measures.tmAscent)};
    PlatformTextBitmap ink = cut_ink(&sheet);
    SelectObject(set->device, previous);
    DeleteObject(bitmap);
    return ink;
}

PlatformTextBitmap platform_text_draw(PlatformTextFace *face, const wchar_t *text) {
    assert(face != nullptr && text != nullptr);
    const WideText clean = without_controls(text);
    SetText set = set_text(face, clean.get());
    PlatformTextBitmap bitmap = {};
    if (set.width > 0 && set.height > 0) {
        bitmap = draw_set_text(face, &set);
    }
    set_text_end(&set);
    return bitmap;
}
