#include "image/png.h"
#include <gtest/gtest.h>
#include <png.h>
#include "image_test_support.h"
#include "platform/memory.h"
#include "tests/support/test_support.h"

// The pixels of a PNG as blue, green, red, alpha, top row first; empty when it cannot be read.
static std::string png_decode(const std::string &bytes, u32 *width, u32 *height) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) {
        return "";
    }
    image.format = PNG_FORMAT_BGRA;
    std::string pixels(PNG_IMAGE_SIZE(image), '\0');
    if (png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) == 0) {
        return "";
    }
    *width = image.width;
    *height = image.height;
    return pixels;
}

// The picture's pixels as they should come out of the file: top row first and opaque.
static std::string expected_pixels(const PixelImage *image) {
    const std::string all = test_pixels(image);
    const size_t row_size = static_cast<size_t>(image->width) * 4;
    std::string out;
    for (size_t row = static_cast<size_t>(image->height); row > 0; --row) {
        out += all.substr((row - 1) * row_size, row_size);
    }
    for (size_t i = 3; i < out.size(); i += 4) {
        out[i] = static_cast<char>(0xFF);
    }
    return out;
}

TEST(PngWriteImage, GivesTheSamePixelsRightWayUpAndOpaque) {
    const TemporaryFolder folder;
    const struct { i32 width, height; } cases[] = {{1, 1}, {2, 2}, {7, 3}, {300, 200}};
    for (const auto &c : cases) {
        const Owned<PixelImage> image = test_image(c.width, c.height);
        ASSERT_EQ(png_write_image(image.get(), folder.file(L"a.png").c_str()), 0);
        u32 width = 0;
        u32 height = 0;
        const std::string pixels = png_decode(test_file_read(folder.file(L"a.png")), &width, &height);
        EXPECT_EQ(width, static_cast<u32>(c.width));
        EXPECT_EQ(height, static_cast<u32>(c.height));
        EXPECT_TRUE(expected_pixels(image.get()) == pixels) << c.width << " x " << c.height;
    }
}

TEST(PngWriteImage, ATransparentPictureKeepsItsAlpha) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image = test_image(2, 1);
    image->transparent = true;
    ASSERT_EQ(png_write_image(image.get(), folder.file(L"a.png").c_str()), 0);
    u32 width = 0;
    u32 height = 0;
    const std::string pixels = png_decode(test_file_read(folder.file(L"a.png")), &width, &height);
    EXPECT_EQ(pixels, std::string("\1\2\3\4\5\6\7\10"));
}

TEST(PngTryEncode, GivesTheBytesOfTheFile) {
    const TemporaryFolder folder;
    // 640 x 480 pixels that hardly shrink: 1.2 MB, for which the block grows several times.
    for (const i32 width : {2, 640}) {
        const Owned<PixelImage> image = test_image(width, width * 3 / 4);
        u32 value = 1;
        for (i32 i = 0; i < width * (width * 3 / 4) * 4; ++i) {
            value = value * 1664525U + 1013904223U;
            image->pixels[i] = static_cast<u8>(value >> 24U);
        }
        image->transparent = true;
        image->notes = image_notes_try_create();
        ASSERT_TRUE(image_notes_try_add(image->notes, "Software", "Quarn"));
        ASSERT_EQ(png_write_image(image.get(), folder.file(L"a.png").c_str()), 0);
        i64 size = 0;
        const Owned<u8[]> bytes = png_try_encode(image.get(), &size);
        ASSERT_NE(bytes, nullptr);
        EXPECT_GT(size, width * 3 / 4 * width);
        EXPECT_TRUE(std::string(bytes.get(), bytes.get() + size) == test_file_read(folder.file(L"a.png")));
    }
}

TEST(PngTryEncode, LackOfMemoryIsTheCallersAndLeavesNothing) {
    const Owned<PixelImage> image = test_image(300, 200);
    const i64 before = memory_live_blocks();
    i32 failures = 0;
    bool made = false;
    for (i32 trip = 0; trip < 100 && !made; ++trip) {
        memory_trip_after(trip);
        i64 size = -1;
        const Owned<u8[]> bytes = png_try_encode(image.get(), &size);
        memory_trip_after(-1);
        made = bytes != nullptr;
        failures += made ? 0 : 1;
        EXPECT_EQ(size > 0, made) << trip;
        EXPECT_EQ(memory_live_blocks(), before + (made ? 1 : 0)) << trip;
    }
    EXPECT_TRUE(made);
    EXPECT_GT(failures, 3) << "the library's two records, its compressor and the block";
}

TEST(PngWriteImage, LeavesThePictureAndTheMemoryAsTheyWere) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image = test_image(40, 30);
    const std::string pixels = test_pixels(image.get());
    const i64 before = memory_live_blocks();
    ASSERT_EQ(png_write_image(image.get(), folder.file(L"a.png").c_str()), 0);
    EXPECT_EQ(memory_live_blocks(), before);
    EXPECT_EQ(test_pixels(image.get()), pixels);
}

TEST(PngWriteImage, AnEmptyPictureMakesNoFile) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image(image_create(0, 3, L"empty"));
    EXPECT_EQ(png_write_image(image.get(), folder.file(L"empty.png").c_str()), 1);
    EXPECT_FALSE(test_file_exists(folder.file(L"empty.png")));
}

TEST(PngWriteImage, AFolderThatIsNotThereFails) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image = test_image(1, 1);
    EXPECT_EQ(png_write_image(image.get(), folder.file(L"missing/one.png").c_str()), 1);
}
