// font_face.h: faces that fontconfig finds, opened and scaled with FreeType.
#pragma once
#include <fontconfig/fontconfig.h>
#include <ft2build.h>

#include "platform/platform.h"
#include FT_FREETYPE_H

inline constexpr i32 BOLD_FROM_WEIGHT = 600;

// Whether a call of FreeType had no error. A picture whose text is missing for lack of memory would look as
// if it were whole, so that ends the program.
bool font_face_succeeded(FT_Error error);

// What fontconfig has for Arial, as a pattern to be destroyed; null when it knows no face at all.
//   character   a code point that the face should have, which need not be so; 0: any face will do
FcPattern *font_face_match(bool bold, u32 character);

// The scalable face that fontconfig has for Arial, or null when there is none; freed with FT_Done_Face.
//   character   a code point that the face has; 0: any face will do
FT_Face font_face_open(FT_Library library, bool bold, u32 character);

// Whether the glyphs of a face have to be thickened to look bold.
bool font_face_needs_embolden(FT_Face face, bool bold);

// Scales a face so that its cell, from the lowest descent to the highest ascent, has a height in pixels, and
// fills the metrics, which may be null. False when the face tells no sizes.
bool font_face_scale(FT_Face face, i32 height, bool embolden, PlatformFontMetrics *metrics);
