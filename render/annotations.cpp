#include "render/annotations.h"

#include <cassert>
#include <cwchar>

#include "render/labels.h"
#include "render/legend.h"
#include "render/picture_layout.h"
#include "render/picture_text.h"
#include "render/scale_bars.h"

// Pixels of the plain style.
static constexpr i32 TITLE_FONT_HEIGHT = 44;
static constexpr i32 SMALLEST_TITLE_FONT_HEIGHT = 22;
static constexpr i32 NOTE_FONT_HEIGHT = 28;
static constexpr i32 NOTE_LEFT = 14;
static constexpr i32 NOTE_RISE = 10;

// Centred over the picture, smaller where it is long, and cut where it is too long all the same.
static void draw_title(const Scene *scene, i32 image_height, i32 title_height) {
    const PictureStyle *style = scene->style;
    const i32 room = style->width - 2 * picture_pixels(style, NOTE_LEFT);
    i32 height = picture_pixels(style, TITLE_FONT_HEIGHT);
    const i32 smallest = picture_pixels(style, SMALLEST_TITLE_FONT_HEIGHT);
    const WideText start = picture_text_start(style->title, smallest, room);
    const i32 width = picture_text_width(start.get(), height);
    if (width > room) {
        const i32 fitting = static_cast<i32>(i64{height} * room / width);
        height = fitting > smallest ? fitting : smallest;
    }
    const WideText title = picture_text_fit(start.get(), height, room);
    const i32 left = (style->width - picture_text_width(title.get(), height)) / 2;
    const i32 middle = image_height - title_height / 2;
    picture_text_draw(left, middle - picture_text_drop(height), title.get(), height);
}

// What a reader has to know of the figures and the proportions, in the lower left corner beside the legend.
static void draw_notes(const Scene *scene, const PictureLayout *layout) {
    const PictureStyle *style = scene->style;
    const bool stretched = style->vertical_scale != 1.0F;
    const bool has_unit = style->fine && scene->stack->show_heights != 0;
    wchar_t text[96] = L"";
    if (stretched) {
        std::swprintf(text, 64, L"z x %g%ls", static_cast<f64>(style->vertical_scale),
                      has_unit ? L"     " : L"");
    }
    if (has_unit) {
        std::wcscat(text, L"heights in 0.1 nm");
    }
    if (text[0] != 0) {
        picture_text_draw(layout->legend_width + picture_pixels(style, NOTE_LEFT),
                          picture_pixels(style, NOTE_RISE), text, picture_pixels(style, NOTE_FONT_HEIGHT));
    }
}

void annotations_draw(const Scene *scene, i32 image_height) {
    assert(scene != nullptr && scene->stack != nullptr && scene->style != nullptr && image_height > 0);
    const PictureLayout layout = picture_layout(scene, image_height);
    if (scene->stack->show_heights != 0) {
        labels_draw_heights(scene);
    }
    labels_draw_scale(scene);
    if (scene->style->fine) {
        scale_bars_draw(scene, &layout);
    }
    draw_notes(scene, &layout);
    if (layout.title_height > 0) {
        draw_title(scene, image_height, layout.title_height);
    }
    if (scene->stack->show_legend != 0) {
        legend_draw(scene, image_height, layout.title_height);
    }
}
