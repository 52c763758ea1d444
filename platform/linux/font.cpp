// Bitmap fonts: FreeType draws the characters of a face in black and white, and each becomes one display list
// with a glBitmap.
#include <GL/glew.h>

#include <cassert>
#include <cstring>

#include "platform/linux/font_face.h"
#include "platform/memory.h"
#include FT_SYNTHESIS_H

static constexpr i32 CHARACTER_COUNT = 255;

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
    if (!font_face_succeeded(FT_Load_Char(face, character, FT_LOAD_TARGET_MONO | FT_LOAD_NO_BITMAP))) {
        return false;
    }
    if (embolden) {
        FT_GlyphSlot_Embolden(face->glyph);
    }
    return font_face_succeeded(FT_Render_Glyph(face->glyph, FT_RENDER_MODE_MONO)) &&
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
    if (!font_face_succeeded(FT_Init_FreeType(&library))) {
        compile_lists(list_base, nullptr, false);
        return false;
    }
    FT_Face face = font_face_open(library, bold, 0);
    const bool embolden = face != nullptr && font_face_needs_embolden(face, bold);
    if (face != nullptr && !font_face_scale(face, height, embolden, metrics)) {
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
