#include "process/section_choice.h"

#include <gtest/gtest.h>

#include "platform/memory.h"
#include "platform/platform.h"
#include "tests/process/process_read.h"
#include "tests/support/test_support.h"

// What a process file gives with a chosen section.
struct ChosenRead : ReadStack {
    i32 result = -1;
    std::string console;

    ChosenRead(const std::string &text, const SectionChoice &choice) {
        const TemporaryFolder folder;
        const std::wstring path = folder.file(L"p.txt");
        test_file_write(path, text);
        const ConsoleCapture capture;
        result = process_read_file(&stack, path.c_str(), &choice);
        console = capture.narrow();
    }
};

static constexpr SectionChoice CHOICE = {"1.5", "-2", "8", "4", nullptr};

static void expect_chosen(const Stack &stack) {
    EXPECT_EQ(stack.origin_x, 1.5F);
    EXPECT_EQ(stack.origin_y, -2.0F);
    EXPECT_EQ(stack.width, 8.0F);
    EXPECT_EQ(stack.depth, 4.0F);
}

TEST(SectionChoice, ItsLineIsThatOfAProcessFile) {
    char line[PROCESS_LINE_SIZE];
    section_choice_line(&CHOICE, line);
    EXPECT_STREQ(line, "location -x 1.5 -y -2 -dx 8 -dy 4");
}

TEST(SectionChoice, TakesThePlaceOfTheFigures) {
    const ChosenRead read(HEAD, CHOICE);
    EXPECT_EQ(read.result, 0) << read.console;
    expect_chosen(read.stack);
    EXPECT_STREQ(read.stack.cell_name, "TOP");
    EXPECT_EQ(read.stack.location_line, 3);
    EXPECT_EQ(read.stack.steps->items[0]->thickness, 0.05F * 8.0F);
}

TEST(SectionChoice, IsInTheUnitsOfTheFile) {
    const ChosenRead read(
        "settings -version 3 -use_nm\n"
        "gds -cell TOP\n"
        "location -x 0 -y 0 -dx 9 -dy 9\n",
        {"1500", "250", "8000", "4000", nullptr});
    EXPECT_EQ(read.result, 0) << read.console;
    EXPECT_FLOAT_EQ(read.stack.origin_x, 1.5F);
    EXPECT_FLOAT_EQ(read.stack.origin_y, 0.25F);
    EXPECT_FLOAT_EQ(read.stack.width, 8.0F);
    EXPECT_FLOAT_EQ(read.stack.depth, 4.0F);
}

TEST(SectionChoice, StandsInForALocationThatTheFileLacks) {
    const ChosenRead read("settings -version 3\ngds -cell TOP\n", CHOICE);
    EXPECT_EQ(read.result, 0) << read.console;
    expect_chosen(read.stack);
    EXPECT_EQ(read.stack.location_line, 0);
}

TEST(SectionChoice, NamesAnotherCell) {
    const SectionChoice choice = {"0", "0", "8", "4", "SUB CELL"};
    const ChosenRead read(HEAD, choice);
    EXPECT_EQ(read.result, 0) << read.console;
    EXPECT_STREQ(read.stack.cell_name, "SUB CELL");

    const ChosenRead without("settings -version 3\n", choice);  // neither gds nor location
    EXPECT_EQ(without.result, 0) << without.console;
    EXPECT_STREQ(without.stack.cell_name, "SUB CELL");
}

TEST(SectionChoice, WhatIsWrongWithItIsAFaultOfTheLine) {
    const ChosenRead read(HEAD, {"0", "0", "0", "4", nullptr});
    EXPECT_EQ(read.result, 1);
    // Without a width no photo resolution and no bias is small enough either: 0.25 x 0 is below both.
    const std::string whole = faults(
        0, {"The maximum photo resolution (0.000 micron) can not exceed 25% of the cross section width",
            "The max patterning bias (0.000 micron) can not exceed 25% of the cross section width"});
    EXPECT_EQ(read.console, faults(3, {"Invalid -dx argument"}) + whole);
}

TEST(SectionChoice, TwoLocationsStayOneTooMany) {
    const ChosenRead read(HEAD + "location -x 0 -y 0 -dx 10 -dy 5\n", CHOICE);
    EXPECT_EQ(read.result, 1);
    EXPECT_EQ(read.console, faults(4, {"Duplicate location (cut) command found"}));
}
