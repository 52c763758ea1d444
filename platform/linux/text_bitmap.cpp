// Each letter is drawn for itself and set beside the one before, so that scripts whose letters change with
// their neighbours come out as single letters.
#include "platform/text_bitmap.h"

#include <cassert>

#include "platform/linux/font_face.h"
#include "platform/utf8.h"
#include FT_SYNTHESIS_H

static constexpr i32 MOST_FACES = 8;  // the first is Arial; the others have letters that it lacks

struct PlatformTextFace {
    FT_Library library;  // null when it does not start
    FT_Face faces[MOST_FACES];
    i32 face_count;
    u8 *missing;  // a bit for each character that no face was found for, since looking takes long; null at
                  // first
    i32 height;
    bool bold;
};

// Adds the face that has a character, or with 0 the usual one. Returns its place, or -1.
static i32 add_face(PlatformTextFace *face, u32 character) {
    if (face->library == nullptr || face->face_count == MOST_FACES) {
        return -1;
    }
    FT_Face added = font_face_open(face->library, face->bold, character);
    if (added == nullptr) {
        return -1;
    }
    if (!font_face_scale(added, face->height, false, nullptr)) {
        FT_Done_Face(added);
        return -1;
    }
    face->faces[face->face_count] = added;
    return face->face_count++;
}

PlatformTextFace *platform_text_face_create(i32 height, i32 weight) {
    auto *face = memory_new_zeroed<PlatformTextFace>();
    face->height = height < 1 ? 1 : height;
    face->bold = weight >= BOLD_FROM_WEIGHT;
    if (!font_face_succeeded(FT_Init_FreeType(&face->library))) {
        face->library = nullptr;
    }
    add_face(face, 0);
    return face;
}

void platform_text_face_free(PlatformTextFace *face) {
    if (face == nullptr) {
        return;
    }
    for (i32 i = 0; i < face->face_count; ++i) {
        FT_Done_Face(face->faces[i]);
    }
    if (face->library != nullptr) {
        FT_Done_FreeType(face->library);
    }
    memory_free(face->missing);
    memory_free(face);
}

static bool is_missing(const PlatformTextFace *face, u32 character) {
    return face->missing != nullptr && (face->missing[character / 8] >> (character % 8) & 1) != 0;
}

static void note_missing(PlatformTextFace *face, u32 character) {
    if (face->missing == nullptr) {
        face->missing = memory_new_zeroed<u8>(LARGEST_CODE_POINT / 8 + 1);
    }
    face->missing[character / 8] = static_cast<u8>(face->missing[character / 8] | 1U << (character % 8));
}

// The face to draw a character with: the first one, with its sign for what is missing, where none has it.
static FT_Face face_with(PlatformTextFace *face, u32 character) {
    for (i32 i = 0; i < face->face_count; ++i) {
        if (FT_Get_Char_Index(face->faces[i], character) != 0) {
            return face->faces[i];
        }
    }
    if (face->face_count == 0) {
        return nullptr;
    }
    if (character > LARGEST_CODE_POINT || is_missing(face, character)) {
        return face->faces[0];
    }
    const i32 added = add_face(face, character);
    if (added < 0) {
        note_missing(face, character);
    }
    return face->faces[added >= 0 ? added : 0];
}

// Loads a character's glyph into its face's slot, as an outline. Null when there is none.
static FT_GlyphSlot load_glyph(PlatformTextFace *face, wchar_t unit) {
    const u32 character = static_cast<u32>(static_cast<i32>(unit));
    if (character < 0x20 || (character >= 0x7F && character < 0xA0)) {
        return nullptr;
    }
    FT_Face with = face_with(face, character);
    if (with == nullptr ||
        !font_face_succeeded(FT_Load_Char(with, character, FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP))) {
        return nullptr;
    }
    if (font_face_needs_embolden(with, face->bold)) {
        FT_GlyphSlot_Embolden(with->glyph);
    }
    return with->glyph;
}

static i32 advance_of(const FT_GlyphSlot slot) {
    return static_cast<i32>((slot->advance.x + 32) >> 6);
}

i32 platform_text_width(PlatformTextFace *face, const wchar_t *text) {
    assert(face != nullptr && text != nullptr);
    i32 width = 0;
    for (; *text != 0; ++text) {
        const FT_GlyphSlot slot = load_glyph(face, *text);
        width += slot != nullptr ? advance_of(slot) : 0;
    }
    return width;
}

// The ink's bounds; empty (low above high) at first.
struct InkBounds {
    i32 x_low, x_high, y_low, y_high;  // pixels from the start; the upper ones lie outside
};

static void add_ink(InkBounds *bounds, const FT_GlyphSlot slot, i32 pen) {
    const i32 x = pen + slot->bitmap_left;
    const i32 y = slot->bitmap_top;
    const i32 width = static_cast<i32>(slot->bitmap.width);
    const i32 rows = static_cast<i32>(slot->bitmap.rows);
    if (width > 0 && rows > 0) {
        bounds->x_low = x < bounds->x_low ? x : bounds->x_low;
        bounds->x_high = x + width > bounds->x_high ? x + width : bounds->x_high;
        bounds->y_low = y - rows < bounds->y_low ? y - rows : bounds->y_low;
        bounds->y_high = y > bounds->y_high ? y : bounds->y_high;
    }
}

// Where letters meet, the ink of the heavier one stands.
static void put_ink(PlatformTextBitmap *bitmap, const FT_GlyphSlot slot, i32 pen) {
    const FT_Bitmap &source = slot->bitmap;
    for (u32 row = 0; row < source.rows; ++row) {
        const i64 from_top = source.pitch >= 0 ? i64{row} : i64{source.rows} - 1 - row;
        const u8 *from = source.buffer + from_top * (source.pitch >= 0 ? source.pitch : -i64{source.pitch});
        const i64 y = i64{slot->bitmap_top} - 1 - row - bitmap->bottom;
        u8 *to = bitmap->coverage.get() + y * bitmap->width + (pen + slot->bitmap_left - bitmap->left);
        for (u32 x = 0; x < source.width; ++x) {
            to[x] = from[x] > to[x] ? from[x] : to[x];
        }
    }
}

// Draws every letter, and tells each to `bounds` or puts it into `bitmap`, whichever is not null.
static void walk_letters(PlatformTextFace *face, const wchar_t *text, InkBounds *bounds,
                         PlatformTextBitmap *bitmap) {
    i32 pen = 0;
    for (; *text != 0; ++text) {
        const FT_GlyphSlot slot = load_glyph(face, *text);
        if (slot == nullptr) {
            continue;
        }
        const i32 advance = advance_of(slot);
        if (font_face_succeeded(FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL)) &&
            slot->bitmap.pixel_mode == FT_PIXEL_MODE_GRAY) {
            if (bounds != nullptr) {
                add_ink(bounds, slot, pen);
            } else {
                put_ink(bitmap, slot, pen);
            }
        }
        pen += advance;
    }
}

PlatformTextBitmap platform_text_draw(PlatformTextFace *face, const wchar_t *text) {
    assert(face != nullptr && text != nullptr);
    PlatformTextBitmap bitmap = {};
    InkBounds bounds = {I32_MAX, I32_MIN, I32_MAX, I32_MIN};
    walk_letters(face, text, &bounds, nullptr);
    if (bounds.x_low >= bounds.x_high) {
        return bitmap;
    }
    bitmap.left = bounds.x_low;
    bitmap.bottom = bounds.y_low;
    bitmap.width = bounds.x_high - bounds.x_low;
    bitmap.height = bounds.y_high - bounds.y_low;
    bitmap.coverage = memory_scratch_zeroed<u8>(i64{bitmap.width} * bitmap.height);
    walk_letters(face, text, nullptr, &bitmap);
    return bitmap;
}
