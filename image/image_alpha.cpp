#include "image/image_alpha.h"

#include <cassert>

// Drawing rounds colour and alpha each for itself, so that a colour can come out above its alpha.
static u8 divided(u32 color, u32 alpha) {
    const u32 quotient = (color * 255 + alpha / 2) / alpha;
    return static_cast<u8>(quotient < 255 ? quotient : 255);
}

void image_make_transparent(PixelImage *image) {
    assert(image_is_empty(image) || image->pixels != nullptr);
    i64 count = image_is_empty(image) ? 0 : i64{image->width} * image->height;
    for (u8 *pixel = image->pixels; count > 0; --count, pixel += 4) {
        const u32 alpha = pixel[3];
        for (i32 i = 0; i < 3 && alpha != 255; ++i) {
            pixel[i] = alpha > 0 ? divided(pixel[i], alpha) : u8{255};
        }
    }
    image->transparent = true;
}
