// image_alpha.h: pictures without a ground of their own.
#pragma once
#include "image/pixel_image.h"

// Makes a transparent picture of one whose colours were drawn onto nothing: each lies in the pixels times its
// alpha, and is divided by it again, rounded to the nearest. Where nothing was drawn white is put, for
// programs that do not look at the alpha. The picture must not be packed.
void image_make_transparent(PixelImage *image);
