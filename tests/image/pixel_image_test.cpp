#include "image/pixel_image.h"

#include <gtest/gtest.h>
#include <string>
#include "image_test_support.h"
#include "platform/memory.h"

TEST(ImageCreate, CopiesTheTitle) {
    wchar_t title[] = L"The substrate";
    Owned<PixelImage> image(image_create(3, 2, title));
    title[0] = L'X';
    EXPECT_EQ(image->title->text, std::wstring(L"The substrate"));
    EXPECT_EQ(image->width, 3);
    EXPECT_EQ(image->height, 2);
}

TEST(ImageCreate, WritesOutAMissingTitle) {
    Owned<PixelImage> image(image_create(1, 1, nullptr));
    EXPECT_EQ(image->title->text, std::wstring(L"(null)"));
}

// The title of a picture is part of its file's name.
TEST(ImageTryCreate, WithoutATitleHasAnEmptyOne) {
    const Owned<PixelImage> image(image_try_create(1, 1, nullptr));
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->title->text, std::wstring());
}

TEST(ImageCreate, GivesEverythingBack) {
    const i64 before = memory_live_blocks();
    static_cast<void>(Owned<PixelImage>(image_create(8, 8, L"title")));
    image_free(nullptr);
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(ImageTakePixels, TakesTheNotesTooAndLeavesSizeAndTitle) {
    const i64 before = memory_live_blocks();
    {
        const Owned<PixelImage> image = test_image(5, 3);
        const std::string pixels = test_pixels(image.get());
        image->notes = image_notes_try_create();
        const ImageNotes *notes = image->notes;
        image->transparent = true;
        const Owned<PixelImage> taken(image_take_pixels(image.get()));
        EXPECT_EQ(image->pixels, nullptr);
        EXPECT_EQ(image->notes, nullptr);
        EXPECT_EQ(taken->notes, notes);
        EXPECT_TRUE(taken->transparent);
        for (const PixelImage *each : {image.get(), taken.get()}) {
            EXPECT_EQ(each->width, 5);
            EXPECT_EQ(each->height, 3);
            EXPECT_EQ(each->title->text, std::wstring(L"a picture"));
        }
        EXPECT_EQ(test_pixels(taken.get()), pixels);
    }
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(ImageScale, ByOneReproducesThePicture) {
    const Owned<PixelImage> image = test_image(5, 3);
    const Owned<PixelImage> scaled(image_scale(image.get(), 1.0F));
    EXPECT_EQ(scaled->width, 5);
    EXPECT_EQ(scaled->height, 3);
    EXPECT_EQ(test_pixels(scaled.get()), test_pixels(image.get()));
    EXPECT_EQ(scaled->title->text, std::wstring(L"a picture"));
}

TEST(ImageScale, ByHalfTakesEverySecondPixelFromTheFirst) {
    const Owned<PixelImage> image = test_image(5, 4);
    const Owned<PixelImage> scaled(image_scale(image.get(), 0.5F));
    ASSERT_EQ(scaled->width, 2);
    ASSERT_EQ(scaled->height, 2);
    const std::string all = test_pixels(image.get());
    // Pixels (0, 0), (2, 0), (0, 2), (2, 2) of rows of 5: numbers 0, 2, 10, 12.
    const std::string expected = all.substr(0, 4) + all.substr(8, 4) + all.substr(40, 4) + all.substr(48, 4);
    EXPECT_EQ(test_pixels(scaled.get()), expected);
}

TEST(ImageScale, ByTwoDoublesEveryPixel) {
    const Owned<PixelImage> image = test_image(2, 1);
    const Owned<PixelImage> scaled(image_scale(image.get(), 2.0F));
    ASSERT_EQ(scaled->width, 4);
    ASSERT_EQ(scaled->height, 2);
    const std::string all = test_pixels(image.get());
    const std::string row = all.substr(0, 4) + all.substr(0, 4) + all.substr(4, 4) + all.substr(4, 4);
    EXPECT_EQ(test_pixels(scaled.get()), row + row);
}

TEST(ImageScale, ToNothingGivesAPictureWithoutPixels) {
    const Owned<PixelImage> image = test_image(5, 1);
    const Owned<PixelImage> flat(image_scale(image.get(), 0.5F));
    EXPECT_EQ(flat->width, 2);
    EXPECT_EQ(flat->height, 0);
    const Owned<PixelImage> narrow_source = test_image(1, 5);
    const Owned<PixelImage> narrow(image_scale(narrow_source.get(), 0.5F));
    EXPECT_EQ(narrow->width, 0);
    EXPECT_EQ(narrow->height, 2);
}

// The rule word by word: real divisions in single precision, truncated.
static std::string plain_scale(const PixelImage *image, f32 scale) {
    const i32 height = static_cast<i32>(static_cast<f32>(image->height) * scale);
    const i32 width = static_cast<i32>(static_cast<f32>(image->width) * scale);
    const std::string all = test_pixels(image);
    std::string out;
    for (i32 y = 0; y < height; ++y) {
        const i32 source_y = static_cast<i32>(static_cast<f32>(y) / scale);
        for (i32 x = 0; x < width; ++x) {
            const i32 source_x = static_cast<i32>(static_cast<f32>(x) / scale);
            out += all.substr(static_cast<size_t>(source_y * image->width + source_x) * 4, 4);
        }
    }
    return out;
}

TEST(ImageScale, EqualsThePlainRuleForOddScales) {
    const Owned<PixelImage> image = test_image(61, 37);
    for (const f32 scale : {0.1F, 0.2F, 0.3333F, 0.6F, 0.7F, 0.999F, 1.001F, 1.3F, 1.7F, 3.1F}) {
        const Owned<PixelImage> scaled(image_scale(image.get(), scale));
        EXPECT_EQ(test_pixels(scaled.get()), plain_scale(image.get(), scale)) << "scale " << scale;
    }
}

// Pixels take 4 bytes. 0.3 is 0.30000001 in single precision: 9 / 0.3 is 29.999998, whose column is 29, while
// nine times the reciprocal 3.3333333 rounds to 30.
TEST(ImageScale, DividesRatherThanMultipliesByTheReciprocal) {
    const Owned<PixelImage> row = test_image(40, 4);
    const Owned<PixelImage> scaled(image_scale(row.get(), 0.3F));
    ASSERT_EQ(scaled->width, 12);
    EXPECT_EQ(test_pixels(scaled.get()).substr(36, 4), test_pixels(row.get()).substr(116, 4));
}
