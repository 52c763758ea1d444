#include "image/image_smooth.h"

#include <gtest/gtest.h>
#include <cmath>
#include <random>
#include <string>
#include "image_test_support.h"
#include "platform/memory.h"

// Length of the common part of two stretches.
static f64 overlap(f64 a_begin, f64 a_end, f64 b_begin, f64 b_end) {
    return std::max(0.0, std::min(a_end, b_end) - std::max(a_begin, b_begin));
}

// One byte of the result, from all pixels of the source by the area that they share with it.
static f64 plain_mean(const PixelImage *image, i32 width, i32 height, i32 x, i32 y, i32 byte) {
    const f64 step_x = static_cast<f64>(image->width) / width;
    const f64 step_y = static_cast<f64>(image->height) / height;
    f64 sum = 0;
    for (i32 row = 0; row < image->height; row++) {
        for (i32 column = 0; column < image->width; column++) {
            const f64 area = overlap(x * step_x, (x + 1) * step_x, column, column + 1) *
                             overlap(y * step_y, (y + 1) * step_y, row, row + 1);
            sum += area * image->pixels[(row * image->width + column) * 4 + byte];
        }
    }
    return sum / (step_x * step_y);
}

TEST(ImageSmooth, IsTheMeanOfTheAreaThatAPixelCovers) {
    std::mt19937 random(1);
    const i32 sizes[][4] = {{7, 5, 7, 5},   {8, 6, 4, 3},  {8, 6, 4, 6}, {13, 11, 5, 9}, {31, 17, 30, 16},
                            {40, 30, 8, 6}, {9, 40, 1, 1}, {1, 1, 1, 1}, {5, 3, 12, 4},  {100, 1, 33, 1}};
    for (const auto &size : sizes) {
        ImageHolder image(image_create(size[0], size[1], L"t"), image_free);
        for (i32 i = 0; i < size[0] * size[1] * 4; i++) {
            image->pixels[i] = static_cast<u8>(random());
        }
        const ImageHolder smooth(image_smooth(image.get(), size[2], size[3]), image_free);
        ASSERT_EQ(size[2], smooth->width);
        ASSERT_EQ(size[3], smooth->height);
        EXPECT_EQ(std::wstring(L"t"), smooth->title->text);
        for (i32 i = 0; i < size[2] * size[3] * 4; i++) {
            const i32 pixel = i / 4;
            const f64 mean =
                plain_mean(image.get(), size[2], size[3], pixel % size[2], pixel / size[2], i % 4);
            ASSERT_NEAR(mean, smooth->pixels[i], 0.5001) << size[0] << " to " << size[2] << ", byte " << i;
        }
    }
}

// Every pixel of every second column black: the mean is half, however many pixels one of the result covers.
TEST(ImageSmooth, ACheckerboardIsGrey) {
    ImageHolder image(image_create(64, 64, L""), image_free);
    for (i32 i = 0; i < 64 * 64 * 4; i++) {
        const i32 pixel = i / 4;
        image->pixels[i] = ((pixel % 64) + pixel / 64) % 2 == 0 ? 255 : 0;
    }
    for (const i32 size : {32, 16, 8}) {
        const ImageHolder smooth(image_smooth(image.get(), size, size), image_free);
        const size_t bytes = static_cast<size_t>(size) * static_cast<size_t>(size) * 4;
        EXPECT_EQ(std::string(bytes, '\x80'), test_pixels(smooth.get())) << size;  // 127.5 is rounded up
    }
}

// A black line of one pixel on white takes 255 from its row's sum wherever it stands; each pixel of the
// result has taken its share of it, and each is rounded once.
TEST(ImageSmooth, AHairLineIsNeverLost) {
    const i32 width = 192;
    for (const i32 scaled : {38, 84, 100, 144, 191}) {
        for (i32 line = 0; line < width; line++) {
            ImageHolder image(image_create(width, 1, L""), image_free);
            std::fill_n(image->pixels, width * 4, static_cast<u8>(255));
            image->pixels[line * 4] = 0;
            const ImageHolder smooth(image_smooth(image.get(), scaled, 1), image_free);
            i32 taken = 0;
            for (i32 x = 0; x < scaled; x++) {
                taken += 255 - smooth->pixels[x * 4];
            }
            const f64 expected = 255.0 * scaled / width;
            ASSERT_NEAR(expected, taken, 1.0) << "line " << line << " of " << width << " in " << scaled;
        }
    }
}

// The largest picture of all-white pixels: no sum runs over.
TEST(ImageSmooth, TallPicturesStayWhite) {
    ImageHolder image(image_create(1920, 9600, L""), image_free);
    std::fill_n(image->pixels, i64{1920} * 9600 * 4, static_cast<u8>(255));
    const ImageHolder smooth(image_smooth(image.get(), 100, 480), image_free);
    EXPECT_EQ(std::string(std::size_t{100} * 480 * 4, '\xFF'), test_pixels(smooth.get()));
}

TEST(ImageSmooth, LackOfMemoryGivesNothing) {
    const ImageHolder image = test_image(8, 8);
    const i64 before = memory_live_blocks();
    i32 trip = 0;
    for (;; trip++) {
        memory_trip_after(trip);
        PixelImage *smooth = image_smooth(image.get(), 4, 4);
        memory_trip_after(-1);
        if (smooth != nullptr) {
            image_free(smooth);
            break;
        }
        EXPECT_EQ(before, memory_live_blocks()) << "allocation " << trip;
    }
    EXPECT_LT(0, trip);
    EXPECT_EQ(before, memory_live_blocks());
}

TEST(ImageLayOnWhite, MixesByAlpha) {
    ImageHolder image(image_create(4, 1, L""), image_free);
    // Blue, green, red, alpha: opaque, clear, half, and a fifth (51 of 255).
    const u8 pixels[16] = {1, 2, 3, 255, 10, 20, 30, 0, 0, 100, 200, 128, 0, 50, 255, 51};
    std::copy(pixels, pixels + 16, image->pixels);
    image_lay_on_white(image.get());
    // 255 - (255 - c) x alpha / 255: for a half 127, 177.2, 227.4; for a fifth 204, 214, 255.
    const u8 expected[16] = {1, 2, 3, 255, 255, 255, 255, 255, 127, 177, 227, 255, 204, 214, 255, 255};
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(expected), 16), test_pixels(image.get()));
}
