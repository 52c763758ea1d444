// image_stream.h: what the encoders of all picture formats have in common: they write to a file that is open.
#pragma once
#include <cstdio>
#include "image/pixel_image.h"

inline constexpr i32 IMAGE_REASON_SIZE = 160;  // bytes of a text that tells why a picture was not written

// Writes a whole picture, which must not be empty or packed, and leaves the file open.
//   reason   receives why not everything could be written, in words for people
// Returns 0, or 1 when something is missing from the file.
using ImageWriter = i32 (*)(const PixelImage *image, std::FILE *file, char reason[IMAGE_REASON_SIZE]);
