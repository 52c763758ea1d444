#include "app/batch/cut_list.h"

#include <gtest/gtest.h>

#include "app/batch/cut_file.h"
#include "app/batch/cut_table.h"
#include "platform/memory.h"
#include "tests/support/test_support.h"

// A list, and what was told while it was made.
struct CutListTest : testing::Test {
    CutList list = {};
    std::string told;

    ~CutListTest() override { cut_list_free(&list); }

    bool option(const char *text) {
        const ConsoleCapture capture;
        const bool added = cut_list_add_option(&list, text);
        told = capture.diagnostics();
        return added;
    }

    // Reads a file "c.csv" of these bytes; its folder is taken out of what was told.
    bool file(const std::string &bytes) {
        const TemporaryFolder folder;
        const std::wstring path = folder.file(L"c.csv");
        test_file_write(path, bytes);
        const ConsoleCapture capture;
        const bool read = cut_file_read(&list, path.c_str());
        told = capture.diagnostics();
        const size_t name = told.find("c.csv");
        told = name != std::string::npos ? told.substr(name) : told;
        return read;
    }

    // "NAME x y dx dy CELL" of each cut, a line each.
    std::string shown() const {
        std::string text;
        for (i32 i = 0; i < list.count; ++i) {
            const Cut *cut = &list.items[i];
            text += std::string(cut->name) + " " + cut->x + " " + cut->y + " " + cut->dx + " " + cut->dy +
                    " " + (cut->cell != nullptr ? cut->cell : "-") + "\n";
        }
        return text;
    }
};

TEST_F(CutListTest, OptionsAreANameAndFourNumbers) {
    EXPECT_TRUE(option("west=0,1.5,-10,4e-1")) << told;
    EXPECT_TRUE(option("a=b c=1,2,3,4")) << told;  // the last "=" parts name and figures
    EXPECT_EQ(shown(), "west 0 1.5 -10 4e-1 -\na=b c 1 2 3 4 -\n");
}

TEST_F(CutListTest, WhatIsNoCutIsTold) {
    const std::string form = "a cut is written NAME=X,Y,DX,DY\n";
    const std::string folder =
        "a name that is a folder has none of / \\ < > : \" | ? * and no control characters\n";
    const std::string ends =
        "a name that is a folder neither begins with a blank nor ends with a blank or a dot\n";
    const std::string device = "Windows keeps this name for a device\n";
    const struct {
        const char *text;
        std::string told;
    } cases[] = {
        // clang-format off
        {"west",              "--cut: \"west\": " + form},
        {"w=1,2,3",           "--cut: \"w=1,2,3\": " + form},
        {"w=1,2,3,4,5",       "--cut: \"w=1,2,3,4,5\": " + form},
        {"=1,2,3,4",          "--cut: \"\": a cut needs a name\n"},
        {"w=1,,3,4",          "--cut: \"w\": y is no number: \"\"\n"},
        {"w=1,2,3um,4",       "--cut: \"w\": dx is no number: \"3um\"\n"},
        {"w=1,2,3,nan",       "--cut: \"w\": dy is no number: \"nan\"\n"},
        {"w=inf,2,3,4",       "--cut: \"w\": x is no number: \"inf\"\n"},
        {"w=0x10,2,3,4",      "--cut: \"w\": x is no number: \"0x10\"\n"},
        {"w=1e999,2,3,4",     "--cut: \"w\": x is no number: \"1e999\"\n"},
        {"w=1 -dx 9,2,3,4",   "--cut: \"w\": x is no number: \"1 -dx 9\"\n"},
        {"a/b=1,2,3,4",       "--cut: \"a/b\": " + folder},
        {"..=1,2,3,4",        "--cut: \"..\": " + ends},
        {".=1,2,3,4",         "--cut: \".\": " + ends},
        {" a=1,2,3,4",        "--cut: \" a\": " + ends},
        {"a\x1b[2J=1,2,3,4",  "--cut: \"a\\x1b[2J\": " + folder},
        {"NUL=1,2,3,4",       "--cut: \"NUL\": " + device},
        {"aux.x=1,2,3,4",     "--cut: \"aux.x\": " + device},
        {"Com7=1,2,3,4",      "--cut: \"Com7\": " + device},
        // clang-format on
    };
    for (const auto &c : cases) {
        EXPECT_FALSE(option(c.text)) << c.text;
        EXPECT_EQ(told, c.told) << c.text;
    }
    EXPECT_EQ(list.count, 0);
    EXPECT_TRUE(option("com=1,2,3,4") && option("com10=1,2,3,4") && option("nuls=1,2,3,4")) << told;
}

TEST_F(CutListTest, NamesDifferInMoreThanCase) {
    EXPECT_TRUE(option("west=1,2,3,4"));
    EXPECT_FALSE(option("West=1,2,3,4"));
    EXPECT_EQ(told, "--cut: \"West\": another cut has this name\n");
}

TEST_F(CutListTest, AFileHasAHeaderAndALineACut) {
    EXPECT_TRUE(
        file("name,x,y,dx,dy\nwest,0,1,2,3\n\n# a remark\n  \neast, 4 ,5,\t6,7"
             ""))
        << told;
    EXPECT_EQ(shown(), "west 0 1 2 3 -\neast 4 5 6 7 -\n");
}

TEST_F(CutListTest, ColumnsStandInAnyOrderAndACellMayBeNamed) {
    EXPECT_TRUE(
        file("\xEF\xBB\xBF"
             "cell,dy,dx,y,x,name\r\nTOP,4,3,2,1,a\r\n,4,3,2,1,b\r\n"))
        << told;
    EXPECT_EQ(shown(), "a 1 2 3 4 TOP\nb 1 2 3 4 -\n");
}

TEST_F(CutListTest, ValuesMayStandInQuotes) {
    EXPECT_TRUE(file("\"name\",x,y,dx,dy,cell\n \"a, b\" ,1,2,3,4,\"C \"\"D\"\"\"\n")) << told;
    EXPECT_EQ(shown(), "a, b 1 2 3 4 C \"D\"\n");
}

TEST_F(CutListTest, WhatIsWrongInAFileIsToldWithItsLine) {
    const std::string head = "name,x,y,dx,dy\n";
    const struct {
        std::string bytes;
        std::string told;
    } cases[] = {
        // clang-format off
        {"",                        "c.csv: there is no header: name,x,y,dx,dy and, if wanted, cell\n"},
        {"name,x,y,dx\n",           "c.csv:1: the header has no column \"dy\"\n"},
        {"name,x,y,dx,dy,x\n",      "c.csv:1: a second column \"x\": the header is name,x,y,dx,dy and, if wanted, cell\n"},
        {"west,0,1,2,3\n",          "c.csv:1: unknown column \"west\": the header is name,x,y,dx,dy and, if wanted, cell\n"},
        {"name;x;y;dx;dy\n",        "c.csv:1: unknown column \"name;x;y;dx;dy\": the header is name,x,y,dx,dy and, if wanted, cell; values are parted by commas, not semicolons\n"},
        {head + "a,0,1,2\n",        "c.csv:2: 4 values where the header has 5\n"},
        {head + "a,0,1,2,3,4\n",    "c.csv:2: 6 values where the header has 5\n"},
        {head + "\na,0,1,2,x\n",    "c.csv:3: cut \"a\": dy is no number: \"x\"\n"},
        {head + "\"a,0,1,2,3\n",    "c.csv:2: a quoted value has no end, or something behind its end\n"},
        {head + "\"a\"b,0,1,2,3\n", "c.csv:2: a quoted value has no end, or something behind its end\n"},
        {head + std::string("a,0\0,1,2,3\n", 12), "c.csv:2: the line is too long, or holds a byte of value 0\n"},
        {head + std::string(5000, 'a'), "c.csv:2: the line is too long, or holds a byte of value 0\n"},
        {head + std::string(100, ','), "c.csv:2: too many values\n"},
        // clang-format on
    };
    for (const auto &c : cases) {
        EXPECT_FALSE(file(c.bytes)) << c.bytes;
        EXPECT_EQ(told, c.told) << c.bytes;
        EXPECT_EQ(list.count, 0) << c.bytes;
    }
}

TEST_F(CutListTest, AFileThatIsNotThereIsTold) {
    const ConsoleCapture capture;
    EXPECT_FALSE(cut_file_read(&list, L"/nowhere/c.csv"));
    EXPECT_EQ(capture.diagnostics().substr(0, 16), "/nowhere/c.csv: ");
}

static std::string line_of(const CutResult &result) {
    char name[] = "west";
    const Cut cut = {name, nullptr, nullptr, nullptr, nullptr, nullptr};
    const Owned<WString> line = cut_result_line(&cut, &result);
    return test_utf8(wstring_text(line.get()));
}

TEST(CutResultLine, SaysHowACutEnded) {
    wchar_t reason[] = L"why";
    EXPECT_EQ(line_of({BATCH_DONE, true, true, 26, 4.44, nullptr}), "west: 26 pictures in 4.4 s");
    EXPECT_EQ(line_of({BATCH_DONE, true, true, 1, 0.0, reason}), "west: 1 picture in 0.0 s; why");
    EXPECT_EQ(line_of({BATCH_DONE, true, true, 0, 0.2, nullptr}), "west: done in 0.2 s");
    EXPECT_EQ(line_of({BATCH_INTERRUPTED, true, true, 3, 1.0, nullptr}),
              "west: 3 pictures in 1.0 s, interrupted");
    EXPECT_EQ(line_of({BATCH_PROCESS_FAILED, true, true, 0, 1.0, reason}), "west: failed: why");
    EXPECT_EQ(line_of({BATCH_WRITE_FAILED, true, true, 0, 1.0, nullptr}),
              "west: failed: something could not be written");
    EXPECT_EQ(line_of({BATCH_DONE, false, false, 0, 0.0, nullptr}), "west: not started");
}
