// image_test_support.h: pictures made for the tests of this folder.
#pragma once
#include <string>
#include "image/pixel_image.h"

// A picture whose bytes count up from `first`, so that every pixel can be told from its neighbours.
inline Owned<PixelImage> test_image(i32 width, i32 height, u32 first = 1) {
    Owned<PixelImage> image(image_create(width, height, L"a picture"));
    for (i64 i = 0; i < static_cast<i64>(width) * height * 4; ++i) {
        image->pixels[i] = static_cast<u8>(static_cast<u32>(i) + first);
    }
    return image;
}

inline std::string test_pixels(const PixelImage *image) {
    const size_t size = static_cast<size_t>(image->width) * static_cast<size_t>(image->height) * 4;
    return std::string(reinterpret_cast<const char *>(image->pixels), size);
}
