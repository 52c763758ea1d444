// Tests of export/page_base64.h.
#include "export/page_base64.h"

#include <gtest/gtest.h>

#include <string>

static std::string base64(const std::string &bytes) {
    ExportText text = {};
    const Owned<ExportText> owner(&text);
    page_base64_put(&text, reinterpret_cast<const u8 *>(bytes.data()), static_cast<i64>(bytes.size()));
    return std::string(text.bytes != nullptr ? text.bytes : "", static_cast<size_t>(text.size));
}

// The vectors of RFC 4648.
TEST(PageBase64, WritesWhatTheStandardDoes) {
    EXPECT_EQ(base64(""), "");
    EXPECT_EQ(base64("f"), "Zg==");
    EXPECT_EQ(base64("fo"), "Zm8=");
    EXPECT_EQ(base64("foo"), "Zm9v");
    EXPECT_EQ(base64("foob"), "Zm9vYg==");
    EXPECT_EQ(base64("fooba"), "Zm9vYmE=");
    EXPECT_EQ(base64("foobar"), "Zm9vYmFy");
    EXPECT_EQ(base64("\xFB\xFF\xBF"), "+/+/");
}

TEST(PageBase64, PiecesOfLongTextsFollowOneAnotherWithoutPadding) {
    // Bytes 0x69, 0xB7, 0x1D are the digits "abcd".
    std::string bytes;
    std::string digits;
    for (int i = 0; i < 20000; ++i) {
        bytes += "\x69\xB7\x1D";
        digits += "abcd";
    }
    EXPECT_EQ(base64(bytes), digits);
    EXPECT_EQ(base64(bytes + "f"), digits + "Zg==");
}
