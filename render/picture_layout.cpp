#include "render/picture_layout.h"

#include <cassert>
#include <cmath>

#include "render/legend.h"
#include "render/picture_text.h"
#include "render/text.h"

static constexpr f32 BORDER = 64.0F;        // pixels of the plain style
static constexpr f32 FINE_BORDER = 160.0F;  // there are scale bars and a line of notes below the section
static constexpr i32 TITLE_HEIGHT = 64;

i32 picture_title_height(const PictureStyle *style) {
    return style->title != nullptr && style->title[0] != 0 ? picture_pixels(style, TITLE_HEIGHT) : 0;
}

f32 picture_border(const PictureStyle *style) {
    return (style->fine ? FINE_BORDER : BORDER) * style->detail_scale;
}

PicturePoint picture_point(const Scene *scene, const PictureLayout *layout, Vector3 position) {
    const i32 viewport[4] = {layout->x, layout->y, layout->width, layout->height};
    PicturePoint point = {};
    text_window_position(0.0F, 0.0F, position, &scene->camera->transform, viewport, &point.x, &point.y);
    return point;
}

PictureLayout picture_layout(const Scene *scene, i32 image_height) {
    assert(scene != nullptr && scene->stack != nullptr && scene->camera != nullptr &&
           scene->style != nullptr);
    PictureLayout layout = {};
    layout.legend_width = legend_width(scene);
    layout.title_height = picture_title_height(scene->style);
    const i32 width = scene->style->width - layout.legend_width;
    const i32 height = truncate_i32(static_cast<f32>(width) / scene->camera->aspect);
    layout.x = layout.legend_width;
    layout.width = width > 0 ? width : 0;
    layout.height = height > 0 ? height : 0;
    layout.y = (image_height - layout.title_height - layout.height) / 2;
    const PicturePoint left = picture_point(scene, &layout, {0.0F, 0.0F, 0.0F});
    const PicturePoint right = picture_point(scene, &layout, {scene->stack->width, 0.0F, 0.0F});
    layout.foot = picture_text_place(left.y);
    layout.front_left = picture_text_place(left.x);
    layout.front_right = picture_text_place(right.x);
    return layout;
}

PictureScale picture_scale(const Scene *scene, const PictureLayout *layout) {
    assert(scene != nullptr && layout != nullptr);
    const f32 width = scene->stack->width;
    const f32 rise = width * 0.001F / scene->style->vertical_scale;
    const PicturePoint left = picture_point(scene, layout, {0.0F, 0.0F, 0.0F});
    const PicturePoint right = picture_point(scene, layout, {width, 0.0F, 0.0F});
    const PicturePoint upper = picture_point(scene, layout, {0.0F, 0.0F, rise});
    const f64 across = (static_cast<f64>(right.x) - static_cast<f64>(left.x)) / static_cast<f64>(width);
    const f64 upwards = (static_cast<f64>(upper.y) - static_cast<f64>(left.y)) / static_cast<f64>(rise);
    return {std::isfinite(across) && across > 0.0 ? across : 0.0,
            std::isfinite(upwards) && upwards > 0.0 ? upwards : 0.0};
}
