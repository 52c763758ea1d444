#include "image/image_alpha.h"

#include <gtest/gtest.h>

#include <cstring>

TEST(ImageMakeTransparent, DividesColoursByTheirAlpha) {
    // Blue, green, red, alpha as drawn onto nothing, and what they are.
    const struct {
        u8 drawn[4], made[4];
    } pixels[] = {
        {{0, 0, 0, 0}, {255, 255, 255, 0}},            // nothing there
        {{10, 20, 30, 255}, {10, 20, 30, 255}},        // opaque: as it is
        {{64, 0, 128, 128}, {128, 0, 255, 128}},       // 64 * 255 / 128 = 127.5, rounded up
        {{1, 0, 0, 3}, {85, 0, 0, 3}},                 // 255 / 3
        {{130, 129, 128, 128}, {255, 255, 255, 128}},  // rounding let them come out above their alpha
    };
    const i32 count = static_cast<i32>(sizeof(pixels) / sizeof(pixels[0]));
    const Owned<PixelImage> image(image_create(count, 1, L"picture"));
    for (i32 i = 0; i < count; ++i) {
        std::memcpy(image->pixels + i * 4, pixels[i].drawn, 4);
    }
    ASSERT_FALSE(image->transparent);
    image_make_transparent(image.get());
    EXPECT_TRUE(image->transparent);
    for (i32 i = 0; i < count; ++i) {
        for (i32 c = 0; c < 4; ++c) {
            EXPECT_EQ(image->pixels[i * 4 + c], pixels[i].made[c]) << "pixel " << i << ", byte " << c;
        }
    }
}

TEST(ImageMakeTransparent, AnEmptyPictureStaysEmpty) {
    const Owned<PixelImage> image(image_create(0, 5, L"picture"));
    image_make_transparent(image.get());
    EXPECT_TRUE(image->transparent);
}
