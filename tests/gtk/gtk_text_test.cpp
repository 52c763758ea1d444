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
    EXPECT_EQ(taken(gtk_text_from_wide(nullptr)), "");
    EXPECT_EQ(taken(gtk_text_from_wide(L"")), "");
    EXPECT_EQ(taken(gtk_text_from_wide(L"a \u00B5m \u534A")), "a \xC2\xB5m \xE5\x8D\x8A");
    EXPECT_EQ(taken(gtk_text_from_wide(L"\U0001F52C")), "\xF0\x9F\x94\xAC");
}

// The unit 0xDCE9 stands for the byte 0xE9 of a file name in an old coding. U+FFFD is EF BF BD.
TEST(GtkText, BytesThatAreNoTextAreMarked) {
    EXPECT_EQ(taken(gtk_text_from_wide(L"caf\xDCE9.gds")), "caf\xEF\xBF\xBD.gds");
    EXPECT_EQ(taken(gtk_text_lines_from_wide(L"\xDCFF\r\n")), "\xEF\xBF\xBD\n");
}

TEST(GtkText, OnlyPairsOfLineEndsAreShortened) {
    EXPECT_EQ(taken(gtk_text_lines_from_wide(nullptr)), "");
    EXPECT_EQ(taken(gtk_text_lines_from_wide(L"\r\n")), "\n");
    EXPECT_EQ(taken(gtk_text_lines_from_wide(L"one\r\n\r\ntwo\r\n")), "one\n\ntwo\n");
    EXPECT_EQ(taken(gtk_text_lines_from_wide(L"a\rb\r\r\n\nc\r")), "a\rb\r\n\nc\r");
}
