// image_stream.h: the encoders behind image_file.h, writing to a file that is already open.
#pragma once
#include <cstdio>
#include "image/pixel_image.h"

inline constexpr i32 IMAGE_REASON_SIZE = 160;

// Both write the whole picture, which must not be empty, and leave the file open.
//   reason   receives why not everything could be written, in words for people
// Returns 0, or 1 when something is missing from the file.
i32 bmp_write_stream(const PixelImage *image, std::FILE *file, char reason[IMAGE_REASON_SIZE]);
i32 png_write_stream(const PixelImage *image, std::FILE *file, char reason[IMAGE_REASON_SIZE]);

bool image_is_empty(const PixelImage *image);  // has no pixel
