// image_file.h: write pictures to files, whole or not at all.
#pragma once
#include "image/pixel_image.h"

enum ImageFormat {
    IMAGE_BMP = 0,
    IMAGE_PNG = 1,
};

// Writes the picture in a format, whole or not at all (platform/whole_file.h). Returns 0, or 1 when it could
// not be written: an older file of that name stays, and the system's reason goes to diagnostic_write.
i32 image_save(const PixelImage *image, const wchar_t *path, ImageFormat format);
