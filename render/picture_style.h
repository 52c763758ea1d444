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
    f32 detail_scale;      // size of texts, legend and dots: 1 is that of the plain style
};

// White ground, true proportions, no title.
inline constexpr PictureStyle PLAIN_STYLE = {PICTURE_WIDTH, false, 1.0F, nullptr, {1.0F, 1.0F, 1.0F, 1.0F},
                                             1.0F};

// Sets the width of pictures, with which their texts grow.
inline void picture_style_set_width(PictureStyle *style, i32 width) {
    style->width = width;
    style->detail_scale = static_cast<f32>(width) / static_cast<f32>(PICTURE_WIDTH);
}

// A length of the plain style (pixels) in a picture of this one: rounded, at least 1.
inline i32 picture_pixels(const PictureStyle *style, i32 plain) {
    const i32 scaled = truncate_i32(static_cast<f64>(plain) * static_cast<f64>(style->detail_scale) + 0.5);
    return scaled < 1 ? 1 : scaled;
}

// Whether texts have a white edge: in fine pictures, and on a ground on which black may not be readable.
inline bool picture_texts_are_edged(const PictureStyle *style) {
    const f32 *color = style->background;
    return style->fine || color[0] < 1.0F || color[1] < 1.0F || color[2] < 1.0F || color[3] < 1.0F;
}

// Whether what lies behind the picture is to show through.
inline bool picture_is_transparent(const PictureStyle *style) {
    return style->background[3] < 1.0F;
}
