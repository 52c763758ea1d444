// image_pack.h: keep pictures small while nobody looks at them. A picture of a section has few colours, so
// that its pixels shrink to some hundredth.
#pragma once
#include "image/pixel_image.h"

// Compresses the pixels (zlib, fastest level) and frees them; width, height and title stay. Returns true when
// the picture is packed; false, and nothing is changed, when memory is lacking or the picture has no pixels.
// Uses no more memory than the packed picture at any time besides some 300 kB.
bool image_pack(PixelImage *image);

// A new picture with the pixels, the title and the notes of one that is packed or not, freed with image_free;
// the source is unchanged. Null when memory is lacking.
PixelImage *image_unpack(const PixelImage *image);
