// image_file.h: write pictures to files.
#pragma once
#include "image/pixel_image.h"

enum ImageFormat {
    IMAGE_BMP = 0,
    IMAGE_PNG = 1,
};

// Writes a 32-bit uncompressed BMP, rows bottom-up, alpha as it is.
// Returns 0, or 1 when the picture is empty or the file cannot be opened. A short write is not
// detected here; image_save looks at the finished file.
i32 bmp_write(const PixelImage *image, const wchar_t *path);

// Writes a PNG with the same pixels right way up and opaque. Returns 0 or 1.
i32 png_write_image(const PixelImage *image, const wchar_t *path);

// Writes the picture in a format, whole or not at all (platform/whole_file.h). Returns 0, or 1 when it could
// not be written: an older file of that name stays, and the system's reason goes to diagnostic_write.
i32 image_save(const PixelImage *image, const wchar_t *path, ImageFormat format);
