// bmp.h: pictures as 32-bit uncompressed BMP, rows bottom-up, alpha as it is.
#pragma once
#include "image/image_stream.h"

// Writes the file. Returns 0, or 1 when the picture is empty or the file cannot be opened. A short write is
// not detected here; image_save looks at the finished file.
i32 bmp_write(const PixelImage *image, const wchar_t *path);

// The same to an open file, an ImageWriter.
i32 bmp_write_stream(const PixelImage *image, std::FILE *file, char reason[IMAGE_REASON_SIZE]);
