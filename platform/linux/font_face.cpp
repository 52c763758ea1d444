#include "platform/linux/font_face.h"

#include "platform/memory.h"
#include FT_ADVANCES_H
#include FT_TRUETYPE_TABLES_H

bool font_face_succeeded(FT_Error error) {
    if (error == FT_Err_Out_Of_Memory) {
        memory_end_program();
    }
    return error == 0;
}

// Adds that the face has a letter and draws it in one colour. False for lack of memory.
static bool want_character(FcPattern *wanted, u32 character) {
    FcCharSet *characters = FcCharSetCreate();
    const bool made = characters != nullptr && FcCharSetAddChar(characters, character) != FcFalse &&
                      FcPatternAddCharSet(wanted, FC_CHARSET, characters) != FcFalse &&
                      FcPatternAddBool(wanted, FC_COLOR, FcFalse) != FcFalse;
    if (characters != nullptr) {
        FcCharSetDestroy(characters);
    }
    return made;
}

// What is asked of fontconfig. Its calls fail for lack of memory only.
static FcPattern *wanted_pattern(bool bold, u32 character) {
    FcPattern *wanted = FcPatternCreate();
    const bool made =
        wanted != nullptr &&
        FcPatternAddString(wanted, FC_FAMILY, reinterpret_cast<const FcChar8 *>("Arial")) != FcFalse &&
        FcPatternAddInteger(wanted, FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR) != FcFalse &&
        FcPatternAddInteger(wanted, FC_SLANT, FC_SLANT_ROMAN) != FcFalse &&
        FcPatternAddBool(wanted, FC_SCALABLE, FcTrue) != FcFalse;
    if (!made || (character != 0 && !want_character(wanted, character))) {
        memory_end_program();
    }
    FcConfigSubstitute(nullptr, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    return wanted;
}

FcPattern *font_face_match(bool bold, u32 character) {
    FcPattern *wanted = wanted_pattern(bold, character);
    FcResult result = FcResultNoMatch;
    FcPattern *match = FcFontMatch(nullptr, wanted, &result);
    if (match == nullptr && result == FcResultOutOfMemory) {
        memory_end_program();
    }
    FcPatternDestroy(wanted);
    return match;
}

FT_Face font_face_open(FT_Library library, bool bold, u32 character) {
    FcPattern *match = font_face_match(bold, character);
    FcChar8 *file = nullptr;  // owned by the match
    int index = 0;
    FT_Face face = nullptr;
    if (match != nullptr && FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch) {
        if (FcPatternGetInteger(match, FC_INDEX, 0, &index) != FcResultMatch) {
            index = 0;
        }
        if (!font_face_succeeded(FT_New_Face(library, reinterpret_cast<const char *>(file), index, &face))) {
            face = nullptr;
        }
    }
    if (match != nullptr) {
        FcPatternDestroy(match);
    }
    // fontconfig gives the nearest face, which need not have the letter.
    if (face != nullptr &&
        (!FT_IS_SCALABLE(face) || (character != 0 && FT_Get_Char_Index(face, character) == 0))) {
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

bool font_face_needs_embolden(FT_Face face, bool bold) {
    return bold && (face->style_flags & FT_STYLE_FLAG_BOLD) == 0;
}

bool font_face_scale(FT_Face face, i32 height, bool embolden, PlatformFontMetrics *metrics) {
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
    if (metrics != nullptr) {
        const i64 whole = WEIGHT_SUM * cell;
        metrics->avg_char_width =
            static_cast<i32>((weighted_width(face, embolden) * height + whole / 2) / whole);
    }
    return true;
}
