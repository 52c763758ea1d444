#include "sim/stack_extract.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

TEST(ExtractWindow, CoversTheSectionAndItsMargin) {
    const Owned<Stack> stack = test_stack(8, 4, 0.5F, 2);
    stack->origin_x = 10.0F;
    stack->origin_y = -3.0F;
    // Section 4 x 2 um, margin 1 um, units of 1/8 um: x from (10 - 1) * 8 = 72 over (4 + 2) * 8 = 48,
    // y from (-3 - 1) * 8 = -32 over (2 + 2) * 8 = 32.
    const Box window = extract_window(stack.get(), 0.125F);
    EXPECT_EQ(window.x_min, 72);
    EXPECT_EQ(window.x_max, 120);
    EXPECT_EQ(window.y_min, -32);
    EXPECT_EQ(window.y_max, 0);
}

TEST(ExtractWindow, WithoutMarginIsExactlyTheSection) {
    const Owned<Stack> stack = test_stack(8, 4, 0.5F);
    stack->origin_x = 1.0F;
    stack->origin_y = 2.0F;
    const Box window = extract_window(stack.get(), 0.125F);
    EXPECT_EQ(window.x_min, 8);
    EXPECT_EQ(window.x_max, 40);
    EXPECT_EQ(window.y_min, 16);
    EXPECT_EQ(window.y_max, 32);
}

TEST(ExtractWindow, TruncatesTowardZeroAndSumsInF32) {
    const Owned<Stack> stack = test_stack(8, 4, 0.5F);
    stack->origin_x = -0.3F;
    stack->origin_y = 16777.217F;
    // -0.3 um in units of 0.125 um is -2.4 and becomes -2 (not -3).
    const Box coarse = extract_window(stack.get(), 0.125F);
    EXPECT_EQ(coarse.x_min, -2);
    EXPECT_EQ(coarse.x_max, 30);
    // y starts near 16777217 units of 1 nm, beyond the whole numbers of f32: quotient and sum are f32.
    const f32 unit = 0.001F;
    const f32 low = 16777.217F / unit;
    const f32 high = 2.0F / unit + low;
    const Box fine = extract_window(stack.get(), unit);
    EXPECT_EQ(fine.y_min, static_cast<i32>(low));
    EXPECT_EQ(fine.y_max, static_cast<i32>(high));
    EXPECT_EQ(fine.y_max % 2, 0) << "f32 knows only even numbers above 2^24";
}

TEST(ExtractWindow, PlacesBeyondTheIntegersBecomeTheSmallest) {
    const Owned<Stack> stack = test_stack(8, 4, 0.5F);
    for (const f32 origin : {std::nanf(""), 1e30F, -1e30F, HUGE_VALF}) {
        stack->origin_x = origin;
        const Box window = extract_window(stack.get(), 0.125F);
        EXPECT_EQ(window.x_min, I32_MIN) << origin;
        // 32 units more are lost in the f32 sum, whose numbers lie 128 apart there.
        EXPECT_EQ(window.x_max, I32_MIN) << origin;
    }
}

TEST(ExtractReport, TellsWhyARunCannotGoOn) {
    struct Case {
        i32 result;
        bool goes_on;
        const char *text;
    };
    const char *unknown = "ERROR: Unknown error extracting polygons\r\n\r\n";
    // clang-format off
    const Case cases[] = {
        {0, true, ""},
        {29, false, "ERROR: The cell name INV specified in the process file was not found in the GDS database\r\n\r\n"},
        {30, false, "ERROR: Reached the maximum number of polygons. The layout is incomplete.\r\n\r\n\r\n"},
        {1, false, unknown},
        {28, false, unknown},
        {31, false, unknown},
        {-1, false, unknown},
        {-2, false, ""},
    };
    // clang-format on
    for (const Case &test : cases) {
        const ConsoleCapture capture;
        EXPECT_EQ(extract_report(test.result, "INV"), test.goes_on) << test.result;
        EXPECT_EQ(capture.narrow(), test.text) << test.result;
    }
}
