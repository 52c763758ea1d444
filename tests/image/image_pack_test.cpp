#include "image/image_pack.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "image_test_support.h"
#include "platform/memory.h"

// Noise, which cannot be compressed: the packed bytes outgrow every first room.
static Owned<PixelImage> noise(i32 width, i32 height) {
    Owned<PixelImage> image = test_image(width, height);
    std::mt19937 random(7);
    for (i64 i = 0; i < i64{width} * height * 4; ++i) {
        image->pixels[i] = static_cast<u8>(random());
    }
    return image;
}

TEST(ImagePack, GivesTheSamePixelsBack) {
    for (const i32 size : {1, 3, 200}) {
        for (const bool noisy : {false, true}) {
            Owned<PixelImage> image = noisy ? noise(size, size + 1) : test_image(size, size + 1);
            const std::string before = test_pixels(image.get());
            ASSERT_TRUE(image_pack(image.get()));
            EXPECT_EQ(image->pixels, nullptr);
            EXPECT_GT(image->packed_size, 0);
            const Owned<PixelImage> again(image_unpack(image.get()));
            EXPECT_EQ(test_pixels(again.get()), before) << size << " pixels wide";
            EXPECT_EQ(again->title->text, std::wstring(L"a picture"));
            EXPECT_EQ(again->packed, nullptr);
        }
    }
}

TEST(ImagePack, OneColourShrinksToAHundredthAndLess) {
    Owned<PixelImage> image = test_image(1000, 1000);
    std::memset(image->pixels, 0xFF, 4000000);
    ASSERT_TRUE(image_pack(image.get()));
    EXPECT_LT(image->packed_size, 40000);
}

TEST(ImagePack, PackingTwiceChangesNothing) {
    Owned<PixelImage> image = test_image(4, 4);
    ASSERT_TRUE(image_pack(image.get()));
    const u8 *packed = image->packed;
    EXPECT_TRUE(image_pack(image.get()));
    EXPECT_EQ(image->packed, packed);
}

TEST(ImagePack, APictureWithoutPixelsStaysAsItIs) {
    const Owned<PixelImage> image(image_create(0, 5, L"nothing"));
    EXPECT_FALSE(image_pack(image.get()));
    const Owned<PixelImage> copy(image_unpack(image.get()));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->width, 0);
}

TEST(ImageUnpack, CopiesOneThatIsNotPacked) {
    const Owned<PixelImage> image = test_image(5, 3);
    const Owned<PixelImage> copy(image_unpack(image.get()));
    EXPECT_EQ(test_pixels(copy.get()), test_pixels(image.get()));
    EXPECT_NE(image->pixels, copy->pixels);
}

// Whichever allocation fails, the picture keeps its pixels or is whole, and nothing is lost.
TEST(ImagePack, LackOfMemoryLeavesThePicture) {
    const i64 blocks = memory_live_blocks();
    {
        Owned<PixelImage> image = noise(200, 200);
        const std::string before = test_pixels(image.get());
        i64 failures = 0;
        for (i64 trip = 0; image->pixels != nullptr; ++trip) {
            memory_trip_after(trip);
            const bool packed = image_pack(image.get());
            memory_trip_after(-1);
            ASSERT_EQ(packed, image->pixels == nullptr);
            failures += packed ? 0 : 1;
            ASSERT_LT(trip, 100);
        }
        EXPECT_GE(failures, 3) << "the stream's own blocks and the room for the bytes";
        Owned<PixelImage> unpacked;
        for (i64 trip = 0; unpacked == nullptr; ++trip) {
            memory_trip_after(trip);
            unpacked.reset(image_unpack(image.get()));
            memory_trip_after(-1);
            ASSERT_LT(trip, 100);
        }
        EXPECT_EQ(test_pixels(unpacked.get()), before);
    }
    EXPECT_EQ(memory_live_blocks(), blocks);
}
