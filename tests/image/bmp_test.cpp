#include "image/bmp.h"
#include <gtest/gtest.h>
#include "image_test_support.h"
#include "tests/support/test_support.h"

// A header for one of the pictures below: everything that is the same in all of them.
static std::string bmp_bytes(u8 file_size, u8 width, u8 height, const std::string &pixels) {
    std::string bytes(54, '\0');
    bytes[0] = 'B';
    bytes[1] = 'M';
    bytes[2] = static_cast<char>(file_size);
    bytes[10] = 54;  // where the pixels start
    bytes[14] = 40;  // size of the second header
    bytes[18] = static_cast<char>(width);
    bytes[22] = static_cast<char>(height);
    bytes[26] = 1;   // planes
    bytes[28] = 32;  // bits per pixel
    return bytes + pixels;
}

TEST(BmpWrite, OnePixelTakes58Bytes) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image = test_image(1, 1, 10);
    ASSERT_EQ(bmp_write(image.get(), folder.file(L"one.bmp").c_str()), 0);
    const std::string written = test_file_read(folder.file(L"one.bmp"));
    EXPECT_EQ(written.size(), 58U);
    EXPECT_EQ(written, bmp_bytes(58, 1, 1, "\x0A\x0B\x0C\x0D"));
}

TEST(BmpWrite, KeepsTheOrderOfRowsAndBytes) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image = test_image(2, 2, 1);
    ASSERT_EQ(bmp_write(image.get(), folder.file(L"four.bmp").c_str()), 0);
    const std::string pixels("\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F\x10", 16);
    EXPECT_EQ(test_file_read(folder.file(L"four.bmp")), bmp_bytes(54 + 16, 2, 2, pixels));
}

TEST(BmpWrite, PadsNoRow) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image = test_image(3, 5);
    ASSERT_EQ(bmp_write(image.get(), folder.file(L"odd.bmp").c_str()), 0);
    EXPECT_EQ(test_file_read(folder.file(L"odd.bmp")), bmp_bytes(54 + 60, 3, 5, test_pixels(image.get())));
}

TEST(BmpWrite, NumbersAreLittleEndian) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image = test_image(300, 2);
    ASSERT_EQ(bmp_write(image.get(), folder.file(L"wide.bmp").c_str()), 0);
    const std::string written = test_file_read(folder.file(L"wide.bmp"));
    EXPECT_EQ(written.substr(2, 4), std::string("\x96\x09\x00\x00", 4));   // 300 * 2 * 4 + 54 = 2454 = 0x996
    EXPECT_EQ(written.substr(18, 4), std::string("\x2C\x01\x00\x00", 4));  // 300 = 0x12C
}

// The header's figures have 32 bits.
TEST(BmpWrite, FiguresBeyond16BitsAreWhole) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"large.bmp");
    const std::string size("\xF6\x45\x04\x00", 4);     // 70000 * 4 + 54 = 280054 = 0x445F6
    const std::string seventy("\x70\x11\x01\x00", 4);  // 70000 = 0x11170
    const std::string one("\x01\x00\x00\x00", 4);
    const struct { i32 width, height; } cases[] = {{70000, 1}, {1, 70000}};
    for (const auto &c : cases) {
        const Owned<PixelImage> image = test_image(c.width, c.height);
        ASSERT_EQ(bmp_write(image.get(), path.c_str()), 0);
        const std::string written = test_file_read(path);
        ASSERT_EQ(written.size(), 280054U);
        EXPECT_EQ(written.substr(2, 4), size) << c.width << " x " << c.height;
        EXPECT_EQ(written.substr(18, 4), c.width == 1 ? one : seventy) << c.width << " x " << c.height;
        EXPECT_EQ(written.substr(22, 4), c.height == 1 ? one : seventy) << c.width << " x " << c.height;
    }
}

TEST(BmpWrite, AnEmptyPictureMakesNoFile) {
    const TemporaryFolder folder;
    const struct { i32 width, height; } cases[] = {{0, 3}, {3, 0}, {-1, 3}, {3, -1}, {I32_MIN, 1}};
    for (const auto &c : cases) {
        const Owned<PixelImage> image(image_create(c.width, c.height, L"empty"));
        EXPECT_EQ(bmp_write(image.get(), folder.file(L"empty.bmp").c_str()), 1)
            << c.width << " x " << c.height;
        EXPECT_FALSE(test_file_exists(folder.file(L"empty.bmp")));
    }
}

TEST(BmpWrite, AFolderThatIsNotThereFails) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image = test_image(1, 1);
    EXPECT_EQ(bmp_write(image.get(), folder.file(L"missing/one.bmp").c_str()), 1);
}
