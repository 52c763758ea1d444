// png.h: pictures as PNG of 8 bits each for red, green and blue, right way up and opaque; with alpha where
// the picture is transparent. Its notes go along: texts, and the lengths of a pixel as the scale of what is
// shown.
#pragma once
#include "image/image_stream.h"

// Writes the file. Returns 0, or 1 when the picture is empty or something is missing from the file.
i32 png_write_image(const PixelImage *image, const wchar_t *path);

// The same to an open file, an ImageWriter.
i32 png_write_stream(const PixelImage *image, std::FILE *file, char reason[IMAGE_REASON_SIZE]);

// The bytes of such a file in memory, for the clipboard; `size` receives how many there are. The picture must
// not be empty or packed. Null, and 0 bytes, when memory is lacking.
Owned<u8[]> png_try_encode(const PixelImage *image, i64 *size);
