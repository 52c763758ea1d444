#include "process/color_table.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <sstream>
#include <vector>

#include "platform/memory.h"
#include "tests/support/test_support.h"

// Loads a colour file of this text into an empty table; empties the table at the end.
struct ColorLoad {
    i32 result = -1;
    i64 blocks_before;
    std::string console, diagnostics;

    explicit ColorLoad(const std::string &text) {
        const TemporaryFolder folder;
        const std::wstring path = folder.file(L"c.txt");
        test_file_write(path, text);
        color_table_free();
        blocks_before = memory_live_blocks();
        const ConsoleCapture capture;
        result = color_table_load_file(path.c_str());
        console = capture.narrow();
        diagnostics = capture.diagnostics();
    }
    ~ColorLoad() {
        color_table_free();
        EXPECT_EQ(memory_live_blocks(), blocks_before) << "the table must give back all its memory";
    }
    ColorLoad(const ColorLoad &) = delete;
    ColorLoad &operator=(const ColorLoad &) = delete;
};

// Red, green and blue times 255 as text, or "none".
static std::string look_up(const char *name) {
    f32 rgb[3] = {-1.0F, -1.0F, -1.0F};
    if (color_lookup(name, rgb) != 0) {
        EXPECT_EQ(rgb[0], -1.0F) << "an unknown name must leave the colour alone";
        return "none";
    }
    std::ostringstream text;
    text << rgb[0] * 255.0F << " " << rgb[1] * 255.0F << " " << rgb[2] * 255.0F;
    return text.str();
}

struct ColorLineCase {
    const char *line;
    i32 result;
    const char *color;  // of the name "a"
};

class ColorTableLine : public testing::TestWithParam<ColorLineCase> {};

TEST_P(ColorTableLine, IsReadOrEndsTheLoad) {
    const ColorLineCase &c = GetParam();
    const ColorLoad load(c.line);
    EXPECT_EQ(load.result, c.result) << c.line;
    EXPECT_EQ(look_up("a"), c.color) << c.line;
    EXPECT_EQ(load.console, "") << "the front end tells the user";
    EXPECT_EQ(load.diagnostics.empty(), c.result == 0) << load.diagnostics;
}

INSTANTIATE_TEST_SUITE_P(
    Lines, ColorTableLine,
    testing::Values(ColorLineCase{"a x 1, 2, 3\n", 0, "1 2 3"},              //
                    ColorLineCase{"a x 1, 2, 3", 0, "1 2 3"},                // no line end
                    ColorLineCase{"a x 1,2,3\r\n", 0, "1 2 3"},              //
                    ColorLineCase{"a x 1,\t 2,   3 left over", 0, "1 2 3"},  //
                    ColorLineCase{"  a\t#010203 1, 2, 3\n", 0, "1 2 3"},     // leading blanks
                    ColorLineCase{"a x 1 , 2 , 3\n", 1, "none"},             // a blank before a comma
                    ColorLineCase{"a x 1 2 3\n", 1, "none"},                 // no commas
                    ColorLineCase{"a x 1, 2\n", 1, "none"},                  //
                    ColorLineCase{"a 1, 2, 3\n", 1, "none"},                 // the second word is lost
                    ColorLineCase{"a x 1, 2, c\n", 1, "none"},               //
                    ColorLineCase{"a\n", 1, "none"},                         //
                    ColorLineCase{"\v\n", 1, "none"},                        // not a blank line
                    ColorLineCase{" # a\n", 1, "none"},                      // not a comment
                    ColorLineCase{"a x 1, 2, 3\rb\n", 0, "1 2 3"},
                    ColorLineCase{"a x -1, 256, 0\n", 0, "-1 256 0"},  // not checked
                    ColorLineCase{"", 0, "none"}, ColorLineCase{"\n \t\r\n#\n", 0, "none"}));

TEST(ColorTableLoadFile, CommentsAndBlankLinesAnywhereAreIgnored) {
    const ColorLoad load("# first\n\na x 1, 2, 3\n \t \r\n#b x 9, 9, 9\nc x 4, 5, 6\n# last");
    EXPECT_EQ(load.result, 0);
    EXPECT_EQ(look_up("a"), "1 2 3");
    EXPECT_EQ(look_up("#b"), "none");
    EXPECT_EQ(look_up("b"), "none");
    EXPECT_EQ(look_up("c"), "4 5 6");
}

TEST(ColorTableLoadFile, ABadLineEndsTheLoadAndKeepsTheEntriesBefore) {
    const ColorLoad load("a x 1, 2, 3\n\nb x 4 5 6\nc x 7, 8, 9\n");
    EXPECT_EQ(load.result, 1);
    EXPECT_EQ(look_up("a"), "1 2 3");
    EXPECT_EQ(look_up("b"), "none");
    EXPECT_EQ(look_up("c"), "none");
    EXPECT_NE(load.diagnostics.find("c.txt, line 3: "), std::string::npos) << load.diagnostics;
}

TEST(ColorTableLoadFile, ALongLineIsReadOnAsTheNext) {
    // A comment of 1023 characters fills the buffer; what follows it is a line of its own.
    const ColorLoad load("#" + std::string(1022, 'x') + "a x 1, 2, 3\n");
    EXPECT_EQ(load.result, 0);
    EXPECT_EQ(look_up("a"), "1 2 3");
}

TEST(ColorTableLoadFile, MoreThan512EntriesAreKept) {
    std::string text;
    for (i32 i = 0; i < 1100; ++i) {
        text += "c" + std::to_string(i) + " x " + std::to_string(i % 256) + ", 0, 0\n";
    }
    const ColorLoad load(text);
    EXPECT_EQ(load.result, 0);
    EXPECT_EQ(look_up("c0"), "0 0 0");
    EXPECT_EQ(look_up("c511"), "255 0 0");
    EXPECT_EQ(look_up("c512"), "0 0 0");
    EXPECT_EQ(look_up("c1099"), "75 0 0");  // 1099 - 4 * 256
}

TEST(ColorTableLoadFile, AddsToWhatIsThere) {
    const ColorLoad load("a x 1, 2, 3\n");
    const TemporaryFolder folder;
    test_file_write(folder.file(L"d.txt"), "a x 9, 9, 9\nd x 4, 5, 6\n");
    EXPECT_EQ(color_table_load_file(folder.file(L"d.txt").c_str()), 0);
    EXPECT_EQ(look_up("a"), "1 2 3") << "the first entry of a name wins";
    EXPECT_EQ(look_up("d"), "4 5 6");
}

TEST(ColorTableLoadFile, AMissingFileLeavesTheTableEmpty) {
    color_table_free();
    const TemporaryFolder folder;
    const ConsoleCapture capture;
    EXPECT_EQ(color_table_load_file(folder.file(L"none.txt").c_str()), 1);
    EXPECT_EQ(color_table_load_file(folder.path.c_str()), 1) << "a folder is no file";
    EXPECT_EQ(look_up("beige"), "none");
    EXPECT_NE(capture.diagnostics().find("none.txt: "), std::string::npos) << capture.diagnostics();
}

TEST(ColorTableLoad, ReadsFromTheCurrentFolder) {
    const TemporaryFolder folder;
    test_file_write(folder.file(L"colors.txt"), "a x 1, 2, 3\n");
    const CurrentFolder current(folder.path);
    color_table_free();
    EXPECT_EQ(color_table_load(), 0);
    EXPECT_EQ(look_up("a"), "1 2 3");
    color_table_free();
}

TEST(ColorLookup, ComparesWholeNamesAndLetterCase) {
    const ColorLoad load("Snow x 1, 2, 3\n");
    EXPECT_EQ(look_up("Snow"), "1 2 3");
    for (const char *name : {"snow", "SNOW", "Sno", "Snow1", ""}) {
        EXPECT_EQ(look_up(name), "none") << name;
    }
}

TEST(ColorLookup, TheResultIsTheSingleQuotientBy255) {
    const ColorLoad load("a x 1, 100, 255\n");
    f32 rgb[3];
    ASSERT_EQ(color_lookup("a", rgb), 0);
    EXPECT_EQ(rgb[0], 1.0F / 255.0F);
    EXPECT_EQ(rgb[1], 100.0F / 255.0F);
    EXPECT_EQ(rgb[2], 1.0F);
}

TEST(ColorLookup, AnEmptyTableHasNoColor) {
    color_table_free();
    EXPECT_EQ(look_up("beige"), "none");
}

// The file that is installed with the program.

static std::wstring installed_colors() {
    return test_wide(QUARN_DATA_FOLDER "/colors.txt");
}

TEST(InstalledColors, LoadWithoutFault) {
    color_table_free();
    ASSERT_EQ(color_table_load_file(installed_colors().c_str()), 0);
    struct Known {
        const char *name, *color;
    };
    const Known known[] = {
        {"beige", "245 245 220"},
        {"black", "0 0 0"},
        {"white", "255 255 255"},
        {"AliceBlue", "240 248 255"},
        {"aliceblue", "240 248 255"},
        {"LightGoldenrod4", "139 129 76"},
        {"gray50", "127 127 127"},
        {"grey50", "127 127 127"},
        {"gray", "190 190 190"},
        {"DarkSlateGrey", "47 79 79"},
        {"darkslategray", "47 79 79"},
        {"tomato3", "205 79 57"},
        {"MediumOrchid1", "224 102 255"},
        {"LightGreen", "144 238 144"},
        {"teal", "0 128 128"},
        {"RebeccaPurple", "102 51 153"},
        {"gray0", "0 0 0"},
        {"grey100", "255 255 255"},
    };
    for (const Known &k : known) {
        EXPECT_EQ(look_up(k.name), k.color) << k.name;
    }
    color_table_free();
}

TEST(InstalledColors, AreWholeAndAgreeWithThemselves) {
    std::istringstream lines(test_file_read(installed_colors()));
    std::set<std::string> names;
    std::string line;
    while (std::getline(lines, line)) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        char name[64], rest[8] = "";
        int hex = 0, r = 0, g = 0, b = 0;
        ASSERT_EQ(std::sscanf(line.c_str(), "%63s #%6x %d, %d, %d%7s", name,
                              reinterpret_cast<unsigned *>(&hex), &r, &g, &b, rest),
                  5)
            << line;
        EXPECT_EQ(hex, r * 65536 + g * 256 + b) << line;
        EXPECT_TRUE(r >= 0 && r <= 255 && g >= 0 && g <= 255 && b >= 0 && b <= 255) << line;
        EXPECT_TRUE(names.insert(name).second) << "given twice: " << line;
    }
    // The 658 one-word names of the classic table, 264 of them again in lower case, and the 19 later
    // ones of the web, 11 of which have capitals.
    EXPECT_EQ(names.size(), 658U + 264U + 19U + 11U);
    for (i32 i = 0; i <= 100; ++i) {
        EXPECT_EQ(names.count("gray" + std::to_string(i)), 1U) << i;
        EXPECT_EQ(names.count("grey" + std::to_string(i)), 1U) << i;
    }
}
