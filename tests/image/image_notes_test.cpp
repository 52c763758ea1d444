// What goes into files along with pictures, read back with the library that reads them elsewhere.
#include "image/image_notes.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "image/image_pack.h"
#include "image/png.h"
#include "image_test_support.h"
#include "platform/platform.h"
#include "tests/support/test_support.h"

// What a PNG file tells.
struct ReadPng {
    std::vector<std::pair<std::string, std::string>> texts;
    std::vector<int> kinds;  // of the texts
    i32 color_type = -1;
    int unit = 0;  // of the lengths; 0 without any
    f64 width = 0.0, height = 0.0;
};

static ReadPng read_png(const std::wstring &path) {
    ReadPng read;
    std::FILE *file = platform_file_open(path.c_str(), "rb");
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (file == nullptr || setjmp(png_jmpbuf(png)) != 0) {
        ADD_FAILURE() << "not a PNG";
    } else {
        png_init_io(png, file);
        png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
        png_textp texts = nullptr;
        int count = 0;
        png_get_text(png, info, &texts, &count);
        for (int i = 0; i < count; ++i) {
            read.texts.emplace_back(texts[i].key, texts[i].text);
            read.kinds.push_back(texts[i].compression);
        }
        read.color_type = png_get_color_type(png, info);
        png_get_sCAL(png, info, &read.unit, &read.width, &read.height);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    if (file != nullptr) {
        std::fclose(file);
    }
    return read;
}

static Owned<PixelImage> image_with_notes() {
    Owned<PixelImage> image = test_image(3, 2);
    image->notes = image_notes_try_create();
    EXPECT_TRUE(image_notes_try_add(image->notes, "Cell", "INV_X1"));
    EXPECT_TRUE(image_notes_try_add(image->notes, "Empty", ""));
    EXPECT_TRUE(image_notes_try_add(image->notes, "Step", "3 \xC3\x96L \xC5\x81"));
    EXPECT_TRUE(image_notes_try_add(image->notes, "Process file", "r\xE9s\n.txt"));
    image->notes->pixel_width = 2.5e-9;
    image->notes->pixel_height = 3e-10;
    return image;
}

static void expect_notes(const ReadPng &read) {
    ASSERT_EQ(read.texts.size(), 3U);
    EXPECT_EQ(read.texts[0], std::make_pair(std::string("Cell"), std::string("INV_X1")));
    EXPECT_EQ(read.kinds[0], PNG_TEXT_COMPRESSION_NONE);
    EXPECT_EQ(read.texts[1], std::make_pair(std::string("Step"), std::string("3 \xC3\x96L \xC5\x81")));
    EXPECT_EQ(read.kinds[1], PNG_ITXT_COMPRESSION_NONE);
    // A byte of Latin-1 becomes UTF-8, a line end a blank.
    EXPECT_EQ(read.texts[2], std::make_pair(std::string("Process file"), std::string("r\xC3\xA9s .txt")));
    EXPECT_EQ(read.unit, PNG_SCALE_METER);
    EXPECT_NEAR(read.width, 2.5e-9, 1e-14);
    EXPECT_NEAR(read.height, 3e-10, 1e-15);
}

TEST(ImageNotes, GoIntoPngFiles) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image = image_with_notes();
    ASSERT_EQ(png_write_image(image.get(), folder.file(L"a.png").c_str()), 0);
    const ReadPng read = read_png(folder.file(L"a.png"));
    expect_notes(read);
    EXPECT_EQ(read.color_type, PNG_COLOR_TYPE_RGB);
}

TEST(ImageNotes, AreKeptWhileThePictureIsPacked) {
    const TemporaryFolder folder;
    Owned<PixelImage> image = image_with_notes();
    image->transparent = true;
    ASSERT_TRUE(image_pack(image.get()));
    const Owned<PixelImage> unpacked(image_unpack(image.get()));
    image.reset();
    ASSERT_NE(unpacked, nullptr);
    ASSERT_EQ(png_write_image(unpacked.get(), folder.file(L"a.png").c_str()), 0);
    const ReadPng read = read_png(folder.file(L"a.png"));
    expect_notes(read);
    EXPECT_EQ(read.color_type, PNG_COLOR_TYPE_RGB_ALPHA);
}

TEST(ImageNotes, APictureWithoutNotesHasNone) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image = test_image(3, 2);
    ASSERT_EQ(png_write_image(image.get(), folder.file(L"a.png").c_str()), 0);
    const ReadPng read = read_png(folder.file(L"a.png"));
    EXPECT_TRUE(read.texts.empty());
    EXPECT_EQ(read.unit, 0);
}

TEST(ImageNotes, LackOfMemoryIsTheCallers) {
    const i64 before = memory_live_blocks();
    {
        const Owned<PixelImage> image = image_with_notes();
        for (i64 trip = 0; trip < 2; ++trip) {
            memory_trip_after(trip);
            EXPECT_EQ(image_notes_try_copy(image->notes), nullptr) << trip;
        }
        memory_trip_after(0);
        EXPECT_FALSE(image_notes_try_add(image->notes, "More", "text"));
        memory_trip_after(-1);
        EXPECT_EQ(image->notes->count, 3);
        EXPECT_STREQ(image->notes->items[2].keyword, "Process file");
    }
    EXPECT_EQ(memory_live_blocks(), before);
}
