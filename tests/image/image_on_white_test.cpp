#include "image/image_on_white.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <string>
#include "image_test_support.h"

TEST(ImageLayOnWhite, MixesByAlpha) {
    Owned<PixelImage> image(image_create(4, 1, L""));
    // Blue, green, red, alpha: opaque, clear, half, and a fifth (51 of 255).
    const u8 pixels[16] = {1, 2, 3, 255, 10, 20, 30, 0, 0, 100, 200, 128, 0, 50, 255, 51};
    std::copy(pixels, pixels + 16, image->pixels);
    image_lay_on_white(image.get());
    // 255 - (255 - c) x alpha / 255: for a half 127, 177.2, 227.4; for a fifth 204, 214, 255.
    const u8 expected[16] = {1, 2, 3, 255, 255, 255, 255, 255, 127, 177, 227, 255, 204, 214, 255, 255};
    EXPECT_EQ(test_pixels(image.get()), std::string(reinterpret_cast<const char *>(expected), 16));
}
