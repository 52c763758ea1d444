// presentation.h: where a picture lies in the render area: as large as fits with its shape kept, centred.
#pragma once
#include "platform/base.h"

// Pixels; x from the left, y from the bottom.
struct PicturePlace {
    f32 scale;          // for image_scale
    i32 x, y;           // of the scaled picture's lower-left corner, never negative
    i32 width, height;  // of the scaled picture
};

// Where a picture of some size lies in an area of another; sizes in pixels, those of the picture above 0.
PicturePlace picture_place(i32 image_width, i32 image_height, i32 area_width, i32 area_height);

// The height of the render area in a window whose inside has this height.
i32 render_area_height(i32 client_height);
