#include "app/gtk/gtk_text.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <string>

// Takes over a text made for the window library.
static std::string taken(char *text) {
    std::string result = text;
    g_free(text);
    return result;
}

TEST(GtkText, WideTextsBecomeUtf8) {
    EXPECT_EQ("", taken(gtk_text_from_wide(nullptr)));
    EXPECT_EQ("", taken(gtk_text_from_wide(L"")));
    EXPECT_EQ("a \xC2\xB5m \xE5\x8D\x8A", taken(gtk_text_from_wide(L"a \u00B5m \u534A")));
    EXPECT_EQ("\xF0\x9F\x94\xAC", taken(gtk_text_from_wide(L"\U0001F52C")));
}

// The unit 0xDCE9 stands for the byte 0xE9 of a file name in an old coding. U+FFFD is EF BF BD.
TEST(GtkText, BytesThatAreNoTextAreMarked) {
    EXPECT_EQ("caf\xEF\xBF\xBD.gds", taken(gtk_text_from_wide(L"caf\xDCE9.gds")));
    EXPECT_EQ("\xEF\xBF\xBD\n", taken(gtk_text_lines_from_wide(L"\xDCFF\r\n")));
}

TEST(GtkText, OnlyPairsOfLineEndsAreShortened) {
    EXPECT_EQ("", taken(gtk_text_lines_from_wide(nullptr)));
    EXPECT_EQ("\n", taken(gtk_text_lines_from_wide(L"\r\n")));
    EXPECT_EQ("one\n\ntwo\n", taken(gtk_text_lines_from_wide(L"one\r\n\r\ntwo\r\n")));
    EXPECT_EQ("a\rb\r\n\nc\r", taken(gtk_text_lines_from_wide(L"a\rb\r\r\n\nc\r")));
}
