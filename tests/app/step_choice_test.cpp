#include "app/step_choice.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/memory.h"
#include "process/process_text.h"
#include "tests/support/test_support.h"

// The steps of a process: substrate, OXIDE deposition, dump, RESIST photo, GATE etching, dump, strip, OXIDE
// coating. So the pictures 0 to 5 are those of the steps 0, 1, 3, 4, 6 and 7.
struct StepChoice : testing::Test {
    Stack stack = {};
    std::vector<u8> wanted;
    std::string diagnostics;

    StepChoice() {
        stack.steps = step_list_create();
        add(STEP_DEPOSITION, nullptr)->label = process_text_copy("SUBSTRATE").release();
        add(STEP_DEPOSITION, "OXIDE deposition")->label = process_text_copy("OXIDE").release();
        add(STEP_DUMP, nullptr);
        add(STEP_PHOTO, "RESIST photo")->resist_ref = process_text_copy("RESIST").release();
        add(STEP_ETCH, "GATE etching")->name = process_text_copy("GATE").release();
        add(STEP_DUMP, nullptr);
        ProcessStep *strip = add(STEP_STRIP, "photoresist strip");
        strip->resist_ref = process_text_copy("stand alone").release();
        add(STEP_COATING, "OXIDE coating")->label = process_text_copy("OXIDE").release();
    }
    ~StepChoice() override { step_list_free(stack.steps); }

    ProcessStep *add(StepKind kind, const char *title) {
        auto *step = memory_new_zeroed<ProcessStep>();
        step->kind = kind;
        step->title = process_text_copy(title).release();
        step_list_append(stack.steps, step);
        return step;
    }

    bool mark(const char *list) {
        wanted.assign(stack.steps->count, 0);
        const ConsoleCapture capture;
        const bool marked = step_choice_mark(list, &stack, wanted.data());
        diagnostics = capture.diagnostics();
        return marked;
    }
};

TEST_F(StepChoice, PicturesAreCountedWithoutDumps) {
    const i32 numbers[] = {0, 1, 2, 2, 3, 4, 4, 5};
    for (i32 i = 0; i < 8; ++i) {
        EXPECT_EQ(step_picture_number(&stack, i), numbers[i]) << i;
    }
}

TEST_F(StepChoice, ItemsMarkTheirSteps) {
    const struct {
        const char *list;
        std::vector<u8> wanted;
    } cases[] = {
        // clang-format off
        {"0",                     {1, 0, 0, 0, 0, 0, 0, 0}},
        {"2",                     {0, 0, 0, 1, 0, 0, 0, 0}},
        {"1-3",                   {0, 1, 0, 1, 1, 0, 0, 0}},
        {"4-4",                   {0, 0, 0, 0, 0, 0, 1, 0}},
        {"last",                  {0, 0, 0, 0, 0, 0, 0, 1}},
        {" 0 ,\tlast ",           {1, 0, 0, 0, 0, 0, 0, 1}},
        {"GATE",                  {0, 0, 0, 0, 1, 0, 0, 0}},
        {"RESIST",                {0, 0, 0, 1, 0, 0, 0, 0}},
        {"OXIDE",                 {0, 1, 0, 0, 0, 0, 0, 1}},
        {"OXIDE coating",         {0, 0, 0, 0, 0, 0, 0, 1}},
        {"SUBSTRATE",             {1, 0, 0, 0, 0, 0, 0, 0}},
        {"photoresist strip,0-5", {1, 1, 0, 1, 1, 0, 1, 1}},
        // clang-format on
    };
    for (const auto &c : cases) {
        EXPECT_TRUE(mark(c.list)) << c.list << ": " << diagnostics;
        EXPECT_EQ(wanted, c.wanted) << c.list;
        EXPECT_EQ(diagnostics, "") << c.list;
    }
}

TEST_F(StepChoice, WhatThereIsNotIsTold) {
    const struct {
        const char *list;
        const char *told;
    } cases[] = {
        // clang-format off
        {"6",          "--steps: there is no picture 6; they are 0 to 5\n"},
        {"3-9",        "--steps: there is no picture 9; they are 0 to 5\n"},
        {"4-2",        "--steps: \"4-2\" ends before it begins\n"},
        {"gate",       "--steps: no step is named \"gate\"\n"},
        {"stand alone", "--steps: no step is named \"stand alone\"\n"},
        {"-1",         "--steps: no step is named \"-1\"\n"},
        {"1-",         "--steps: no step is named \"1-\"\n"},
        {"99999999999999999999", "--steps: no step is named \"99999999999999999999\"\n"},
        {"1,,2",       "--steps: an item of the list is empty\n"},
        {"",           "--steps: an item of the list is empty\n"},
        {"0,\x1b[2J",  "--steps: no step is named \"\\x1b[2J\"\n"},
        // clang-format on
    };
    for (const auto &c : cases) {
        EXPECT_FALSE(mark(c.list)) << c.list;
        EXPECT_EQ(diagnostics, c.told) << c.list;
    }
}

TEST_F(StepChoice, ANameOfDigitsIsAName) {
    add(STEP_ETCH, "7 etching")->name = process_text_copy("7").release();
    EXPECT_TRUE(mark("7")) << diagnostics;
    EXPECT_EQ(wanted, (std::vector<u8>{0, 0, 0, 0, 0, 0, 0, 0, 1}));
}
