#include "render/scale_bars.h"

#include <cassert>
#include <cmath>
#include <cwchar>

#include "platform/decimal_power.h"
#include "render/picture_text.h"
#include "render/solid_rectangle.h"

// Pixels of the plain style.
static constexpr i32 FONT_HEIGHT = 28;
static constexpr i32 THICKNESS = 4;
static constexpr i32 END_LENGTH = 16;        // of the strokes at the ends of a bar
static constexpr i32 GAP = 22;               // between the cut face and the middle of a bar
static constexpr i32 UPRIGHT_GAP = 14;       // the same at the left, where there is less room
static constexpr i32 TEXT_GAP = 10;          // between a bar and its text
static constexpr i32 EDGE = 2;               // of white around a bar
static constexpr i32 SHORTEST_UPRIGHT = 60;  // of what an upright bar may take at least

static constexpr f32 BLACK[3] = {0.0F, 0.0F, 0.0F};
static constexpr f32 WHITE[3] = {1.0F, 1.0F, 1.0F};

f64 scale_bar_length(f64 longest) {
    assert(longest > 0.0);
    const f64 allowed = longest * (1.0 + 1e-9);  // a length that is round itself is not to fail by a rounding
    const f64 power = decimal_power(allowed);
    if (5.0 * power <= allowed) {
        return 5.0 * power;
    }
    return 2.0 * power <= allowed ? 2.0 * power : power;
}

void scale_bar_format(f64 length, wchar_t text[32]) {
    assert(text != nullptr);
    const bool micrometres = length >= 1.0 - 1e-9;
    std::swprintf(text, 32, L"%g %ls", micrometres ? length : length * 1000.0, micrometres ? L"um" : L"nm");
}

// A bar is three rectangles; all three have their white edges before any is black.
struct Rectangle {
    i32 x0, y0, x1, y1;
};

static void draw_rectangles(const Rectangle (&parts)[3], i32 edge) {
    for (const Rectangle &part : parts) {
        solid_rectangle(part.x0 - edge, part.y0 - edge, part.x1 + edge, part.y1 + edge, WHITE);
    }
    for (const Rectangle &part : parts) {
        solid_rectangle(part.x0, part.y0, part.x1, part.y1, BLACK);
    }
}

static i32 rounded(f64 value) {
    return truncate_i32(std::floor(value + 0.5));
}

// The bar takes the columns from the corner of the cut face on.
static void draw_level_bar(const Scene *scene, const PictureLayout *layout, f64 pixels_per_length) {
    const PictureStyle *style = scene->style;
    const f64 length = scale_bar_length(static_cast<f64>(scene->stack->width) * 0.25);
    const i32 left = layout->front_left;
    const i32 right = left + rounded(length * pixels_per_length);
    const i32 middle = layout->foot - picture_pixels(style, GAP);
    const i32 thickness = picture_pixels(style, THICKNESS);
    const i32 low = middle - thickness / 2;
    const i32 end_low = middle - picture_pixels(style, END_LENGTH) / 2;
    const i32 end_high = end_low + picture_pixels(style, END_LENGTH);
    const Rectangle parts[3] = {{left, low, right, low + thickness},
                                {left, end_low, left + thickness, end_high},
                                {right - thickness, end_low, right, end_high}};
    draw_rectangles(parts, picture_pixels(style, EDGE));
    wchar_t text[32];
    scale_bar_format(length, text);
    const i32 height = picture_pixels(style, FONT_HEIGHT);
    picture_text_draw(right + picture_pixels(style, TEXT_GAP), middle - picture_text_drop(height), text,
                      height);
}

// The bar takes the rows from the foot of the cut face on; its text reads upwards at its left.
static void draw_upright_bar(const Scene *scene, const PictureLayout *layout, f64 pixels_per_length) {
    const PictureStyle *style = scene->style;
    const f64 half = static_cast<f64>(scene->stack->max_height) * 0.5;
    const f64 shortest = static_cast<f64>(picture_pixels(style, SHORTEST_UPRIGHT)) / pixels_per_length;
    const f64 length = scale_bar_length(half > shortest ? half : shortest);
    const i32 low = layout->foot;
    const i32 high = low + rounded(length * pixels_per_length);
    // What stands higher is nearer to the eye, so that the edge of the cut face leans outwards.
    const f32 edge = picture_point(scene, layout, {0.0F, 0.0F, static_cast<f32>(length)}).x;
    const i32 outermost =
        picture_text_place(edge) < layout->front_left ? picture_text_place(edge) : layout->front_left;
    const i32 middle = outermost - picture_pixels(style, UPRIGHT_GAP);
    const i32 thickness = picture_pixels(style, THICKNESS);
    const i32 left = middle - thickness / 2;
    const i32 end_left = middle - picture_pixels(style, END_LENGTH) / 2;
    const i32 end_right = end_left + picture_pixels(style, END_LENGTH);
    const Rectangle parts[3] = {{left, low, left + thickness, high},
                                {end_left, low, end_right, low + thickness},
                                {end_left, high - thickness, end_right, high}};
    draw_rectangles(parts, picture_pixels(style, EDGE));
    wchar_t text[32];
    scale_bar_format(length, text);
    const i32 height = picture_pixels(style, FONT_HEIGHT);
    const i32 start = (low + high - picture_text_width(text, height)) / 2;
    picture_text_draw_upwards(end_left - picture_pixels(style, TEXT_GAP) / 2, start > low ? start : low, text,
                              height);
}

void scale_bars_draw(const Scene *scene, const PictureLayout *layout) {
    assert(scene != nullptr && scene->stack != nullptr && layout != nullptr);
    const PictureScale scale = picture_scale(scene, layout);
    if (scale.across > 0.0 && scene->stack->width > 0.0F) {
        draw_level_bar(scene, layout, scale.across);
    }
    if (scale.upwards > 0.0) {
        draw_upright_bar(scene, layout, scale.upwards);
    }
}
