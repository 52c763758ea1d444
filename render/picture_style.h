// picture_style.h: how pictures look beyond what a process file asks for. All of it is the user's choice; the
// plain style is the one that a run without options has.
#pragma once
#include "log/text.h"

inline constexpr i32 PICTURE_WIDTH = 1920;           // pixels, of the plain style
inline constexpr i32 SMALLEST_PICTURE_WIDTH = 320;   // pixels
inline constexpr i32 LARGEST_PICTURE_WIDTH = 16384;  // pixels; the graphics may bear less
inline constexpr f32 SMALLEST_VERTICAL_SCALE = 0.1F;
inline constexpr f32 LARGEST_VERTICAL_SCALE = 1000.0F;

struct PictureStyle {
    i32 width;             // of every picture, pixels
    bool fine;             // true: drawn as well as it can be; false: drawn as quickly as it can be
    f32 vertical_scale;    // heights are drawn this many times as high as they are
    const wchar_t *title;  // written at the top; null: none; the text is not owned
    f32 background[4];     // red, green, blue and opacity of what shows no film, 0 to 1
};

// White ground, true proportions, no title.
inline constexpr PictureStyle PLAIN_STYLE = {PICTURE_WIDTH, false, 1.0F, nullptr, {1.0F, 1.0F, 1.0F, 1.0F}};
