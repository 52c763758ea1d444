#include "log/shown_text.h"

#include <gtest/gtest.h>

#include <string>

static std::wstring shown(const std::string &bytes) {
    return shown_text(bytes.c_str()).text;
}

TEST(ShownText, PlainAndForeignLettersStay) {
    EXPECT_EQ(shown("CELL_1 $%~"), L"CELL_1 $%~");
    EXPECT_EQ(shown("\xC3\xA9t\xC3\xA9"), L"\u00E9t\u00E9");
    EXPECT_EQ(shown(""), L"");
    EXPECT_STREQ(shown_text(nullptr).text, L"");
    EXPECT_STREQ(shown_text("abcdef", 3).text, L"abc");
}

TEST(ShownText, ControlCharactersBecomeNumbers) {
    EXPECT_EQ(shown("\x1b[31mred\n\x07\t\x7f"), L"\\x1b[31mred\\x0a\\x07\\x09\\x7f");
    EXPECT_EQ(shown("\xC2\x9B"), L"\\x9b");  // U+009B, which begins a sequence as ESC [ does
    EXPECT_EQ(shown("a\xE2\x80\xAE"
                    "b"),
              L"a\\u202eb");  // turns the direction of what follows
}

#ifndef _WIN32
TEST(ShownText, BytesThatAreNoTextBecomeNumbers) {
    EXPECT_EQ(shown("a\xFF\x9B"), L"a\\xff\\x9b");
}
#endif

TEST(ShownText, LongOnesAreCut) {
    EXPECT_EQ(shown(std::string(80, 'n')), std::wstring(80, L'n'));
    EXPECT_EQ(shown(std::string(81, 'n')), std::wstring(77, L'n') + L"...");
    std::wstring escapes;
    for (int i = 0; i < 77; ++i) {
        escapes += L"\\u2028";
    }
    std::string separators;
    for (int i = 0; i < 1000; ++i) {
        separators += "\xE2\x80\xA8";
    }
    EXPECT_EQ(shown(separators), escapes + L"...");
}
