#include "app/presentation.h"

#include <cassert>

#include "app/window_texts.h"

PicturePlace picture_place(i32 image_width, i32 image_height, i32 area_width, i32 area_height) {
    assert(image_width > 0 && image_height > 0 && area_width >= 0 && area_height >= 0);
    PicturePlace place = {};
    place.scale = static_cast<f32>(area_width) / static_cast<f32>(image_width);
    if (static_cast<f32>(image_height) * place.scale > static_cast<f32>(area_height)) {
        place.scale = static_cast<f32>(area_height) / static_cast<f32>(image_height);
    }
    // As image_scale computes them.
    place.width = truncate_i32(static_cast<f32>(image_width) * place.scale);
    place.height = truncate_i32(static_cast<f32>(image_height) * place.scale);
    place.x = place.width < area_width ? (area_width - place.width) / 2 : 0;
    place.y = place.height < area_height ? (area_height - place.height) / 2 : 0;
    return place;
}

i32 render_area_height(i32 client_height) {
    return truncate_i32(static_cast<f32>(client_height) * RENDER_SHARE);
}
