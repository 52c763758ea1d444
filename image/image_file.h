// image_file.h: write pictures to files, whole or not at all.
#pragma once
#include "image/image_stream.h"

enum ImageFormat {
    IMAGE_BMP = 0,
    IMAGE_PNG = 1,
};

inline constexpr i32 IMAGE_FORMAT_COUNT = 2;

struct ImageFormatRow {
    const char *name;          // as an option names it
    const wchar_t *extension;  // with its dot
    ImageWriter write;
};

// What pictures can be saved as; ImageFormat is the index.
extern const ImageFormatRow IMAGE_FORMATS[IMAGE_FORMAT_COUNT];

// Writes the picture in a format, whole or not at all (platform/whole_file.h). Returns 0, or 1 when it could
// not be written: an older file of that name stays, and the system's reason goes to diagnostic_write.
i32 image_save(const PixelImage *image, const wchar_t *path, ImageFormat format);

// The same, which tells nobody but its caller.
//   reason   receives why the picture was not written, in words for people
i32 image_try_save(const PixelImage *image, const wchar_t *path, ImageFormat format,
                   wchar_t reason[IMAGE_REASON_SIZE]);
