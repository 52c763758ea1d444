#include "image/image_on_white.h"

#include <cassert>

void image_lay_on_white(PixelImage *image) {
    assert(image_is_empty(image) || image->pixels != nullptr);
    i64 count = static_cast<i64>(image->width) * image->height;
    for (u8 *pixel = image->pixels; count > 0; --count, pixel += 4) {
        const u32 alpha = pixel[3];
        for (i32 i = 0; i < 3 && alpha != 255; ++i) {
            pixel[i] = color_over_white(pixel[i], alpha);
        }
        pixel[3] = 255;
    }
}
