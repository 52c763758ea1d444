#include "image/image_smooth.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>
#include "image_test_support.h"

static Owned<PixelImage> picture(i32 width, i32 height, const std::vector<u8> &bytes) {
    Owned<PixelImage> image(image_create(width, height, L"a picture"));
    std::copy(bytes.begin(), bytes.end(), image->pixels);
    return image;
}

static Owned<PixelImage> smooth(const Owned<PixelImage> &image, f32 scale) {
    return Owned<PixelImage>(image_scale_smooth(image.get(), scale));
}

TEST(ImageScaleSmooth, ByOneReproducesAnOpaquePicture) {
    Owned<PixelImage> image = test_image(5, 3);
    for (i32 i = 0; i < 15; ++i) {
        image->pixels[i * 4 + 3] = 255;
    }
    const Owned<PixelImage> scaled = smooth(image, 1.0F);
    EXPECT_EQ(scaled->width, 5);
    EXPECT_EQ(scaled->height, 3);
    EXPECT_EQ(test_pixels(scaled.get()), test_pixels(image.get()));
    EXPECT_EQ(scaled->title->text, std::wstring(L"a picture"));
}

TEST(ImageScaleSmooth, ByHalfTakesTheMeanOfFour) {
    // Blue 10, 20, 30, 41: 101 / 4 = 25.25; green 0, 0, 0, 2: 0.5 is rounded up; red 255 stays.
    const Owned<PixelImage> image =
        picture(2, 2, {10, 0, 255, 255, 20, 0, 255, 255, 30, 0, 255, 255, 41, 2, 255, 255});
    const Owned<PixelImage> scaled = smooth(image, 0.5F);
    ASSERT_EQ(scaled->width, 1);
    ASSERT_EQ(scaled->height, 1);
    EXPECT_EQ(test_pixels(scaled.get()), std::string("\x19\x01\xFF\xFF", 4));
}

TEST(ImageScaleSmooth, PartsOfPixelsCountByTheirShare) {
    // Three pixels become two: each takes one whole pixel and half of the middle one.
    // (90 + 0.5 * 30) / 1.5 = 70 and (0.5 * 30 + 0) / 1.5 = 10.
    const Owned<PixelImage> image = picture(3, 3, {90, 0, 0, 255, 30, 0, 0, 255, 0, 0, 0, 255,  //
                                                   90, 0, 0, 255, 30, 0, 0, 255, 0, 0, 0, 255,  //
                                                   90, 0, 0, 255, 30, 0, 0, 255, 0, 0, 0, 255});
    const Owned<PixelImage> scaled = smooth(image, 0.7F);
    ASSERT_EQ(scaled->width, 2);
    ASSERT_EQ(scaled->height, 2);
    for (i32 row = 0; row < 2; ++row) {
        EXPECT_EQ(scaled->pixels[row * 8], 70) << row;
        EXPECT_EQ(scaled->pixels[row * 8 + 4], 10) << row;
    }
}

TEST(ImageScaleSmooth, AHairLineDoesNotVanish) {
    // 40 columns of white with one of black; a quarter of the width: whichever column it is, one scaled
    // pixel has a quarter of its ink, 255 * 3 / 4 = 191.25.
    for (i32 line = 0; line < 40; ++line) {
        std::vector<u8> bytes(static_cast<size_t>(40) * 4 * 4, 255);
        for (size_t row = 0; row < 4; ++row) {
            const size_t at = (row * 40 + static_cast<size_t>(line)) * 4;
            bytes[at] = bytes[at + 1] = bytes[at + 2] = 0;
        }
        const Owned<PixelImage> scaled = smooth(picture(40, 4, bytes), 0.25F);
        ASSERT_EQ(scaled->width, 10);
        for (i32 x = 0; x < 10; ++x) {
            EXPECT_EQ(x == line / 4 ? 191 : 255, scaled->pixels[x * 4]) << "line " << line << ", " << x;
        }
    }
}

TEST(ImageScaleSmooth, TransparentPixelsHaveNoColour) {
    // Alpha 255 and 0: the colour of the first alone, at half its alpha, 127.5 rounded up.
    const Owned<PixelImage> image =
        picture(2, 2, {200, 100, 50, 255, 9, 9, 9, 0, 200, 100, 50, 255, 9, 9, 9, 0});
    EXPECT_EQ(test_pixels(smooth(image, 0.5F).get()), std::string("\xC8\x64\x32\x80", 4));
    const Owned<PixelImage> nothing = picture(2, 1, {1, 2, 3, 0, 4, 5, 6, 0});
    EXPECT_EQ(test_pixels(smooth(nothing, 2.0F).get()), std::string(4 * 4 * 2, '\0'));
}

TEST(ImageScaleSmooth, ToNothingGivesAPictureWithoutPixels) {
    const Owned<PixelImage> scaled = smooth(test_image(5, 1), 0.5F);
    EXPECT_EQ(scaled->height, 0);
}

// The plain twin: every source pixel is repeated until the scaled width and height divide the picture, which
// then falls into whole blocks.
static std::string plain_smooth(const PixelImage *image, i32 width, i32 height) {
    std::string out;
    for (i32 y = 0; y < height; ++y) {
        for (i32 x = 0; x < width; ++x) {
            u64 alpha = 0;
            u64 colors[3] = {};
            for (i32 v = y * image->height; v < (y + 1) * image->height; ++v) {
                for (i32 u = x * image->width; u < (x + 1) * image->width; ++u) {
                    const u8 *pixel = image->pixels + (i64{v / height} * image->width + u / width) * 4;
                    alpha += pixel[3];
                    for (i32 c = 0; c < 3; ++c) {
                        colors[c] += static_cast<u64>(pixel[c]) * pixel[3];
                    }
                }
            }
            const u64 parts = static_cast<u64>(image->width) * static_cast<u64>(image->height);
            for (const u64 color : colors) {
                out += static_cast<char>(alpha > 0 ? (color + alpha / 2) / alpha : 0);
            }
            out += static_cast<char>((alpha + parts / 2) / parts);
        }
    }
    return out;
}

TEST(ImageScaleSmooth, IsItsPlainTwinOnRandomPictures) {
    std::mt19937 random(5);
    for (i32 round = 0; round < 200; ++round) {
        const auto width = static_cast<i32>(1 + random() % 23);
        const auto height = static_cast<i32>(1 + random() % 17);
        const f32 scale = static_cast<f32>(1 + random() % 30) / 12.0F;
        Owned<PixelImage> image = test_image(width, height);
        for (i32 i = 0; i < width * height * 4; ++i) {
            image->pixels[i] = static_cast<u8>(random());
        }
        const Owned<PixelImage> scaled = smooth(image, scale);
        const Owned<PixelImage> nearest(image_scale(image.get(), scale));
        ASSERT_EQ(scaled->width, nearest->width);
        ASSERT_EQ(scaled->height, nearest->height);
        if (scaled->width > 0 && scaled->height > 0) {
            ASSERT_EQ(test_pixels(scaled.get()), plain_smooth(image.get(), scaled->width, scaled->height))
                << width << " x " << height << " by " << scale;
        }
    }
}
