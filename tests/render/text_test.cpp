#include "render/text.h"
#include <gtest/gtest.h>
#include <cstring>
#include "render/labels.h"
#include "render/legend.h"

static const Matrix4 IDENTITY = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};

TEST(TextWindowPosition, TurnsClipIntoWindowCoordinates) {
    // Viewport at (10, 20) of 200 x 100; the text is moved by (3, 4).
    // x = (0.5 + 1) * 200 * 0.5 + 10 + 3 = 163, y = (-0.5 + 1) * 100 * 0.5 + 20 + 4 = 49.
    const i32 viewport[4] = {10, 20, 200, 100};
    f32 x = 0.0F;
    f32 y = 0.0F;
    text_window_position(3.0F, 4.0F, {0.5F, -0.5F, 7.0F}, &IDENTITY, viewport, &x, &y);
    EXPECT_EQ(x, 163.0F);
    EXPECT_EQ(y, 49.0F);
}

TEST(TextWindowPosition, DividesByWUnlessItIsZeroOrOne) {
    const i32 viewport[4] = {0, 0, 200, 100};
    const struct {
        f32 w, x, y;
    } cases[] = {
        {2.0F, 125.0F, 37.5F},  // (0.25 + 1) * 100 and (-0.25 + 1) * 50
        {1.0F, 150.0F, 25.0F},  // (0.5 + 1) * 100 and (-0.5 + 1) * 50
        {0.0F, 150.0F, 25.0F},  // as if it were 1
        {-1.0F, 50.0F, 75.0F},  // behind the eye: mirrored
    };
    for (const auto &c : cases) {
        Matrix4 matrix = IDENTITY;
        matrix.m[15] = c.w;
        f32 x = 0.0F;
        f32 y = 0.0F;
        text_window_position(0.0F, 0.0F, {0.5F, -0.5F, 0.0F}, &matrix, viewport, &x, &y);
        EXPECT_EQ(x, c.x) << "w = " << c.w;
        EXPECT_EQ(y, c.y) << "w = " << c.w;
    }
}

TEST(TextWindowPosition, UsesEveryRowOfTheMatrix) {
    // x = 2*1 + 3*2 + 4*3 + 5 = 25, y = 1*1 + 1*2 + 1*3 + 4 = 10, w = 1*2 + 3 = 5 -> (5, 2).
    const Matrix4 matrix = {{2, 1, 0, 0, 3, 1, 0, 1, 4, 1, 0, 0, 5, 4, 0, 3}};
    const i32 viewport[4] = {0, 0, 2, 2};
    f32 x = 0.0F;
    f32 y = 0.0F;
    text_window_position(0.0F, 0.0F, {1.0F, 2.0F, 3.0F}, &matrix, viewport, &x, &y);
    EXPECT_EQ(x, 6.0F);
    EXPECT_EQ(y, 3.0F);
}

TEST(HeightLabelFormat, GroupsThousands) {
    const struct {
        i64 value;
        const char *expected;
    } cases[] = {
        {0, "0"},
        {-1, "-1"},
        {7, "7"},
        {999, "999"},
        {1000, "1,000"},
        {-1000, "-1,000"},
        {1001, "1,001"},
        {10050, "10,050"},
        {999999, "999,999"},
        {1000000, "1,000,000"},
        {1234567, "1,234,567"},
        {-1234567, "-1,234,567"},
        {I64_MAX, "9,223,372,036,854,775,807"},
        {I64_MIN, "-9,223,372,036,854,775,808"},
    };
    for (const auto &c : cases) {
        char text[32];
        std::memset(text, 'x', sizeof(text));
        height_label_format(c.value, text);
        EXPECT_STREQ(text, c.expected);
    }
}

TEST(ScaleLabelFormat, IsInNanometresUpTo200) {
    const struct {
        f32 width;
        const char *expected;
    } cases[] = {
        {5.0F, "5.00 um"},   {12.345F, "12.35 um"}, {0.2001F, "0.20 um"},
        {0.2F, "200.00 nm"}, {0.05F, "50.00 nm"},
    };
    for (const auto &c : cases) {
        char text[64];
        scale_label_format(c.width, text);
        EXPECT_STREQ(text, c.expected);
    }
    char text[64];
    scale_label_format(F32_MAX, text);
    EXPECT_EQ(std::strlen(text), 39U + 3U + 3U) << "39 digits, two decimals and the unit";
}

TEST(LegendNameCut, ShortensFromThreeBelowTheLimitOn) {
    const struct {
        const char *name;
        i32 limit;
        const char *expected;
    } cases[] = {
        {"OXIDE", 10, "OXIDE"},
        {"POLYSI", 10, "POLYSI"},       // 6 characters: one less than 10 - 3
        {"NITRIDE", 10, "NITRIDE..."},  // 7 characters
        {"SUBSTRATE", 10, "SUBSTRA..."},
        {"", 10, ""},
        {"A", 4, "A..."},
        {"ANY", 3, "..."},
        {"ANY", 0, "..."},
        {"", -5, "..."},
    };
    for (const auto &c : cases) {
        const NarrowText cut = legend_name_cut(c.name, c.limit);
        EXPECT_STREQ(cut.get(), c.expected) << c.name << " for " << c.limit;
    }
}

TEST(LegendRowExtent, ShrinksOnlyWhenTheRowsDoNotFit) {
    const struct {
        i32 k, rows, image_height, y0, y1;
    } cases[] = {
        {0, 3, 108, 0, 36},     {2, 3, 108, 72, 108},
        {2, 3, 900, 72, 108},   {0, 10, 180, 0, 18},  // half of 36
        {9, 10, 180, 162, 180}, {1, 7, 100, 14, 28},  // 36 * 100 / 252 = 14.29 and 28.57, truncated
        {6, 7, 100, 85, 100},                         // 85.7 and 100
    };
    for (const auto &c : cases) {
        i32 y0 = -1;
        i32 y1 = -1;
        legend_row_extent(c.k, c.rows, c.image_height, &y0, &y1);
        EXPECT_EQ(y0, c.y0) << "row " << c.k << " of " << c.rows << " in " << c.image_height;
        EXPECT_EQ(y1, c.y1) << "row " << c.k << " of " << c.rows << " in " << c.image_height;
    }
}
