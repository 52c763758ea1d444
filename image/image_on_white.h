// image_on_white.h: translucent pictures as a window shows them.
#pragma once
#include "image/pixel_image.h"

// One colour of a pixel of that alpha over white, rounded to the nearest.
inline u8 color_over_white(u32 color, u32 alpha) {
    return static_cast<u8>((color * alpha + 255 * (255 - alpha) + 127) / 255);
}

// Lays the colours over white by their alpha, which is 255 afterwards. The picture must not be packed.
void image_lay_on_white(PixelImage *image);
