// The icons are those that desktops ask for. They are made from one drawing by scripts/make-icons.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/test_support.h"

static const std::wstring DATA = test_wide(QUARN_SOURCE_FOLDER) + L"/data/";

static u32 byte_at(const std::string &bytes, size_t at) {
    return at < bytes.size() ? static_cast<u8>(bytes[at]) : 0;
}

static u32 big_u32(const std::string &bytes, size_t at) {
    return byte_at(bytes, at) << 24 | byte_at(bytes, at + 1) << 16 | byte_at(bytes, at + 2) << 8 |
           byte_at(bytes, at + 3);
}

static u32 little_u16(const std::string &bytes, size_t at) {
    return byte_at(bytes, at) | byte_at(bytes, at + 1) << 8;
}

static u32 little_u32(const std::string &bytes, size_t at) {
    return little_u16(bytes, at) | little_u16(bytes, at + 2) << 16;
}

static const std::string PNG_SIGNATURE = "\x89PNG\r\n\x1a\n";

// The width and height of a PNG stand big-endian behind the name of its first block, at 16 and 20; then the
// bits of a channel and the kind, 6 for colours with transparency.
static void expect_png(const std::string &bytes, u32 size) {
    EXPECT_EQ(bytes.substr(0, 8), PNG_SIGNATURE);
    EXPECT_EQ(bytes.substr(12, 4), "IHDR");
    EXPECT_EQ(big_u32(bytes, 16), size);
    EXPECT_EQ(big_u32(bytes, 20), size);
    EXPECT_EQ(byte_at(bytes, 24), 8U);
    EXPECT_EQ(byte_at(bytes, 25), 6U);
}

TEST(Icons, PicturesHaveTheSizesOfTheirNames) {
    for (const u32 size : {16U, 22U, 24U, 32U, 48U, 64U, 128U, 256U, 512U}) {
        SCOPED_TRACE(size);
        expect_png(test_file_read(DATA + L"icon/quarn-" + std::to_wstring(size) + L".png"), size);
    }
}

// An icon file: 0, 1, the count, then 16 bytes for each picture: width, height (0 is 256), colours, 0,
// planes, bits a pixel, length and place of its data. All little-endian.
TEST(Icons, WindowsIconHasFourPicturesOf32Bits) {
    const std::string icon = test_file_read(DATA + L"quarn.ico");
    ASSERT_EQ(little_u16(icon, 0), 0U);
    ASSERT_EQ(little_u16(icon, 2), 1U);
    const u32 sizes[] = {16, 32, 48, 256};
    ASSERT_EQ(little_u16(icon, 4), 4U);
    for (size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(sizes[i]);
        const size_t entry = 6 + 16 * i;
        EXPECT_EQ(byte_at(icon, entry), sizes[i] % 256);
        EXPECT_EQ(byte_at(icon, entry + 1), sizes[i] % 256);
        EXPECT_EQ(little_u16(icon, entry + 6), 32U);
        const u32 length = little_u32(icon, entry + 8);
        const u32 place = little_u32(icon, entry + 12);
        ASSERT_LE(static_cast<size_t>(place) + length, icon.size());
        if (sizes[i] == 256) {
            expect_png(icon.substr(place, length), 256);
        } else {
            // A bitmap with its mask: the header says twice the height.
            EXPECT_EQ(little_u32(icon, place), 40U);
            EXPECT_EQ(little_u32(icon, place + 4), sizes[i]);
            EXPECT_EQ(little_u32(icon, place + 8), 2 * sizes[i]);
        }
    }
}
