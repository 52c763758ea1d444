// Bitmap fonts: fontconfig finds the face, FreeType draws its characters in black and white, and each
// becomes one display list with a glBitmap.
#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include <GL/glew.h>

#include <cassert>
#include <cstring>

#include "platform/memory.h"
#include "platform/platform.h"
#include FT_ADVANCES_H
#include FT_FREETYPE_H
#include FT_SYNTHESIS_H
#include FT_TRUETYPE_TABLES_H

static constexpr i32 CHARACTER_COUNT = 255;
static constexpr i32 BOLD_FROM_WEIGHT = 600;

// A picture whose text is missing for lack of memory would look as if it were whole. Returns whether there
// was no error.
static bool succeeded(FT_Error error) {
    if (error == FT_Err_Out_Of_Memory) {
        memory_end_program();
    }
    return error == 0;
}

// What is asked of fontconfig. Its calls fail for lack of memory only.
static FcPattern *wanted_pattern(bool bold) {
    FcPattern *wanted = FcPatternCreate();
    const bool made =
        wanted != nullptr &&
        FcPatternAddString(wanted, FC_FAMILY, reinterpret_cast<const FcChar8 *>("Arial")) != FcFalse &&
        FcPatternAddInteger(wanted, FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR) != FcFalse &&
        FcPatternAddInteger(wanted, FC_SLANT, FC_SLANT_ROMAN) != FcFalse &&
        FcPatternAddBool(wanted, FC_SCALABLE, FcTrue) != FcFalse;
    if (!made) {
        memory_end_program();
    }
    FcConfigSubstitute(nullptr, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    return wanted;
}

// The scalable face that fontconfig has for Arial; null when there is none.
static FT_Face open_face(FT_Library library, bool bold) {
    FcPattern *wanted = wanted_pattern(bold);
    FcResult result = FcResultNoMatch;
    FcPattern *match = FcFontMatch(nullptr, wanted, &result);
    if (match == nullptr && result == FcResultOutOfMemory) {
        memory_end_program();
    }
    FcChar8 *file = nullptr;  // owned by the match
    int index = 0;
    FT_Face face = nullptr;
    if (match != nullptr && FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch) {
        if (FcPatternGetInteger(match, FC_INDEX, 0, &index) != FcResultMatch) {
            index = 0;
        }
        if (!succeeded(FT_New_Face(library, reinterpret_cast<const char *>(file), index, &face))) {
            face = nullptr;
        }
    }
    if (match != nullptr) {
        FcPatternDestroy(match);
    }
    FcPatternDestroy(wanted);
    if (face != nullptr && !FT_IS_SCALABLE(face)) {
        FT_Done_Face(face);
        face = nullptr;
    }
    return face;
}

// How often the letters a to z and the blank stand in a thousand characters of text: the weights of the
// classic text metric (OpenType, OS/2 table, xAvgCharWidth up to version 2).
static constexpr i64 LETTER_WEIGHTS[26] = {64, 14, 27, 35, 100, 20, 14, 42, 63, 3,  6, 35, 20,
                                           56, 56, 17, 4,  49,  56, 71, 31, 10, 18, 3, 18, 2};
static constexpr i64 BLANK_WEIGHT = 166;
static constexpr i64 WEIGHT_SUM = 1000;
static constexpr i64 THICKENED_SHARE = 24;  // FreeType widens thickened glyphs by this part of the em

static i64 advance_in_units(FT_Face face, char character) {
    FT_Fixed advance = 0;
    const FT_UInt glyph = FT_Get_Char_Index(face, static_cast<FT_ULong>(character));
    return FT_Get_Advance(face, glyph, FT_LOAD_NO_SCALE, &advance) == 0 ? advance : 0;
}

// WEIGHT_SUM times the average width of running text, in units of the face. Newer faces tell the mean of
// all their glyphs instead, far wider than text is. Whole units, not the pixels of the size in use: those
// are rounded letter by letter, and the average would not grow evenly with the height.
//   embolden   the glyphs are thickened, which makes each of them wider
static i64 weighted_width(FT_Face face, bool embolden) {
    i64 sum = BLANK_WEIGHT * advance_in_units(face, ' ');
    for (char letter = 'a'; letter <= 'z'; ++letter) {
        sum += LETTER_WEIGHTS[letter - 'a'] * advance_in_units(face, letter);
    }
    if (sum <= 0) {
        sum = WEIGHT_SUM * face->max_advance_width / 2;
    }
    return embolden ? sum + WEIGHT_SUM * face->units_per_EM / THICKENED_SHARE : sum;
}

// Scales the face so that its cell, from the lowest descent to the highest ascent, has the height in
// pixels, and fills the metrics. False when the face tells no sizes.
static bool scale_face(FT_Face face, i32 height, bool embolden, PlatformFontMetrics *metrics) {
    i64 cell = i64{face->ascender} - face->descender;
    const auto *table = static_cast<const TT_OS2 *>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    if (table != nullptr && table->version != 0xFFFF && table->usWinAscent + table->usWinDescent > 0) {
        cell = i64{table->usWinAscent} + table->usWinDescent;
    }
    if (cell <= 0 || face->units_per_EM == 0) {
        return false;
    }
    const i64 em_64ths = (i64{height} * 64 * face->units_per_EM + cell / 2) / cell;
    if (FT_Set_Char_Size(face, 0, em_64ths, 72, 72) != 0) {
        return false;
    }
    const i64 whole = WEIGHT_SUM * cell;
    metrics->avg_char_width = static_cast<i32>((weighted_width(face, embolden) * height + whole / 2) / whole);
    return true;
}

// Compiles the glyph in the face's slot, drawn in black and white, into the open display list. The
// raster position is on the baseline; rows go upwards, as glBitmap takes them.
static void compile_glyph(const FT_GlyphSlot slot) {
    const FT_Bitmap &source = slot->bitmap;
    const i32 width = static_cast<i32>(source.width);
    const i32 rows = static_cast<i32>(source.rows);
    const i32 row_bytes = (width + 7) / 8;
    const auto bits = memory_scratch_zeroed<u8>(i64{row_bytes} * rows);
    for (i32 row = 0; row < rows; ++row) {
        // A positive pitch has the upper row first.
        const i64 from_top = source.pitch >= 0 ? row : rows - 1 - row;
        const i64 pitch = source.pitch >= 0 ? source.pitch : -i64{source.pitch};
        std::memcpy(bits.get() + i64{rows - 1 - row} * row_bytes, source.buffer + from_top * pitch,
                    static_cast<size_t>(row_bytes));
    }
    glBitmap(width, rows, static_cast<f32>(-slot->bitmap_left), static_cast<f32>(rows - slot->bitmap_top),
             static_cast<f32>((slot->advance.x + 32) >> 6), 0.0F, bits.get());
}

static bool draw_glyph(FT_Face face, u32 character, bool embolden) {
    if (!succeeded(FT_Load_Char(face, character, FT_LOAD_TARGET_MONO | FT_LOAD_NO_BITMAP))) {
        return false;
    }
    if (embolden) {
        FT_GlyphSlot_Embolden(face->glyph);
    }
    return succeeded(FT_Render_Glyph(face->glyph, FT_RENDER_MODE_MONO)) &&
           face->glyph->bitmap.pixel_mode == FT_PIXEL_MODE_MONO;
}

// One list per character, which are code points on every system (0x80 to 0x9F are controls); all are empty
// without a face.
static void compile_lists(u32 list_base, FT_Face face, bool embolden) {
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_UNPACK_LSB_FIRST, GL_FALSE);
    for (i32 character = 0; character < CHARACTER_COUNT; ++character) {
        glNewList(list_base + static_cast<u32>(character), GL_COMPILE);
        if (face != nullptr && draw_glyph(face, static_cast<u32>(character), embolden)) {
            compile_glyph(face->glyph);
        }
        glEndList();
    }
    glPopClientAttrib();
}

bool platform_font_lists(u32 list_base, i32 height, i32 weight, PlatformFontMetrics *metrics) {
    assert(metrics != nullptr && platform_gl_is_current());
    height = height < 1 ? 1 : height;
    metrics->height = height;
    metrics->avg_char_width = (height * 2 + 2) / 5;  // what common sans-serif faces have
    const bool bold = weight >= BOLD_FROM_WEIGHT;
    FT_Library library = nullptr;
    if (!succeeded(FT_Init_FreeType(&library))) {
        compile_lists(list_base, nullptr, false);
        return false;
    }
    FT_Face face = open_face(library, bold);
    const bool embolden = face != nullptr && bold && (face->style_flags & FT_STYLE_FLAG_BOLD) == 0;
    if (face != nullptr && !scale_face(face, height, embolden, metrics)) {
        FT_Done_Face(face);
        face = nullptr;
    }
    compile_lists(list_base, face, embolden);
    const bool found = face != nullptr;
    if (found) {
        FT_Done_Face(face);
    }
    FT_Done_FreeType(library);
    return found;
}
