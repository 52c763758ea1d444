// image_smooth.h: scale a picture so that thin lines and small figures stay legible.
#pragma once
#include "image/pixel_image.h"

// A new picture of the size that image_scale gives, each of whose pixels is the mean of the area that it
// covers in the source: parts of pixels count by their share. Colours count by their alpha as well, since
// what is transparent has none. Exact integers, rounded to the nearest. Freed with image_free.
PixelImage *image_scale_smooth(const PixelImage *image, f32 scale);
