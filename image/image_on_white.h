// image_on_white.h: translucent pictures as a window shows them.
#pragma once
#include "image/pixel_image.h"

// Lays the colours over white by their alpha, which is 255 afterwards; rounded to the nearest. The picture
// must not be packed.
void image_lay_on_white(PixelImage *image);
