#include "app/gtk/gtk_text.h"

#include <gtest/gtest.h>

TEST(GtkText, WideTextsBecomeUtf8) {
    EXPECT_STREQ(gtk_text_from_wide(nullptr).get(), "");
    EXPECT_STREQ(gtk_text_from_wide(L"").get(), "");
    EXPECT_STREQ(gtk_text_from_wide(L"a \u00B5m \u534A").get(), "a \xC2\xB5m \xE5\x8D\x8A");
    EXPECT_STREQ(gtk_text_from_wide(L"\U0001F52C").get(), "\xF0\x9F\x94\xAC");
}

// The unit 0xDCE9 stands for the byte 0xE9 of a file name in an old coding. U+FFFD is EF BF BD.
TEST(GtkText, BytesThatAreNoTextAreMarked) {
    EXPECT_STREQ(gtk_text_from_wide(L"caf\xDCE9.gds").get(), "caf\xEF\xBF\xBD.gds");
    EXPECT_STREQ(gtk_text_lines_from_wide(L"\xDCFF\r\n").get(), "\xEF\xBF\xBD\n");
}

TEST(GtkText, OnlyPairsOfLineEndsAreShortened) {
    EXPECT_STREQ(gtk_text_lines_from_wide(nullptr).get(), "");
    EXPECT_STREQ(gtk_text_lines_from_wide(L"\r\n").get(), "\n");
    EXPECT_STREQ(gtk_text_lines_from_wide(L"one\r\n\r\ntwo\r\n").get(), "one\n\ntwo\n");
    EXPECT_STREQ(gtk_text_lines_from_wide(L"a\rb\r\r\n\nc\r").get(), "a\rb\r\n\nc\r");
}
