#include "sim/stack_grid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/memory.h"
#include "sim/kernels/offsets.h"
#include "sim/stack_setup.h"
#include "tests/support/test_support.h"

static const f32 INF = std::numeric_limits<f32>::infinity();

static Owned<Stack> settings(i32 grid_n, f32 width, f32 depth, f32 resolution) {
    Owned<Stack> stack(memory_new_zeroed<Stack>());
    stack->grid_n = grid_n;
    stack->width = width;
    stack->depth = depth;
    stack->max_bias = F32_MIN_NORMAL;
    stack->max_resolution = resolution;
    return stack;
}

TEST(StackGridLay, RoundsRowsUpAndGrowsTheDepth) {
    struct Case {
        i32 grid_n;
        f32 width, depth;
        i32 grid_m;
    };
    // Binary spacings are exact. 1 / 200 in f32 is 0.00499999988..., so that 0.5 holds 100.000002
    // of them and takes 101; 10 / 200 is 0.0500000007..., and 5 takes 100.
    // clang-format off
    const Case cases[] = {
        {256, 64.0F, 16.0F, 64},
        {256, 64.0F, 16.1F, 65},
        {256, 64.0F, 64.0F, 256},
        {200, 1.0F, 0.5F, 101},
        {200, 10.0F, 5.0F, 100},
    };
    // clang-format on
    for (const Case &test : cases) {
        const ConsoleCapture capture;
        const Owned<Stack> stack = settings(test.grid_n, test.width, test.depth, F32_MIN_NORMAL);
        ASSERT_TRUE(stack_grid_lay(stack.get()));
        const f32 spacing = test.width / static_cast<f32>(test.grid_n);
        EXPECT_EQ(stack->spacing, spacing);
        EXPECT_EQ(stack->grid_m, test.grid_m) << test.width << " x " << test.depth;
        EXPECT_EQ(stack->depth, static_cast<f32>(test.grid_m) * spacing);
        EXPECT_EQ(capture.narrow(), "");
    }
}

TEST(StackGridLay, MarginIsTheLargerOfBiasAndResolutionInGridPoints) {
    struct Case {
        f32 bias, resolution;
        i32 margin;
    };
    // Spacing 0.25. The settings start both at 2^-126, which takes one point.
    // clang-format off
    const Case cases[] = {
        {0.0F, 0.0F, 0},
        {F32_MIN_NORMAL, F32_MIN_NORMAL, 1},
        {0.0F, 0.25F, 1},
        {0.0F, 0.26F, 2},
        {1.0F, 0.25F, 4},
        {0.25F, 1.01F, 5},
    };
    // clang-format on
    for (const Case &test : cases) {
        const ConsoleCapture capture;
        const Owned<Stack> stack = settings(256, 64.0F, 16.0F, test.resolution);
        stack->max_bias = test.bias;
        ASSERT_TRUE(stack_grid_lay(stack.get()));
        EXPECT_EQ(stack->margin_cells, test.margin) << test.bias << ", " << test.resolution;
    }
}

TEST(StackGridLay, RefusesASectionThatCannotBeDivided) {
    struct Case {
        f32 width, depth;
        const char *shown;
    };
    // clang-format off
    const Case cases[] = {
        {std::nanf(""), 5.0F, "nan um x 5 um"},
        {INF, INF, "inf um x inf um"},
        {10.0F, std::nanf(""), "10 um x nan um"},
        {10.0F, INF, "10 um x inf um"},
        {0.0F, 5.0F, "0 um x 5 um"},
        {-10.0F, 5.0F, "-10 um x 5 um"},
        {10.0F, -5.0F, "10 um x -5 um"},
        {10.0F, 0.0F, "10 um x 0 um"},
        {1e-45F, 1e-45F, "1.4013e-45 um x 1.4013e-45 um"},
    };
    // clang-format on
    for (const Case &test : cases) {
        const ConsoleCapture capture;
        const Owned<Stack> stack = settings(200, test.width, test.depth, F32_MIN_NORMAL);
        EXPECT_FALSE(stack_grid_lay(stack.get())) << test.shown;
        EXPECT_EQ(capture.narrow(), std::string("ERROR: A cross section of ") + test.shown +
                                        " can not be divided into a grid\r\n\r\n");
    }
}

TEST(StackGridLay, RefusesAGridThatNeedsTooLargeANeighborTable) {
    // 2000 x 2000 points with a margin of m take (2 (2000 + 2 m) - 1) squared neighbours:
    // 17319 squared is 299,947,761 at m = 3330; 17323 squared is above 300 million.
    struct Case {
        f32 resolution;
        bool fits;
        const char *margin;
    };
    // clang-format off
    const Case cases[] = {
        {3330.0F, true, ""},
        {3331.0F, false, "3331"},
        {1e30F, false, "1000000015047466219876688855040"},
        {INF, false, "inf"},
    };
    // clang-format on
    for (const Case &test : cases) {
        const ConsoleCapture capture;
        const Owned<Stack> stack = settings(2000, 2000.0F, 2000.0F, test.resolution);
        EXPECT_EQ(stack_grid_lay(stack.get()), test.fits) << test.resolution;
        EXPECT_EQ(capture.narrow(), test.fits ? std::string()
                                              : std::string("ERROR: A grid of 2000 x 2000 points with a "
                                                            "margin of ") +
                                                    test.margin + " points is too large\r\n\r\n");
    }
}

TEST(StackGridLay, CountsTheNeighborsOfAGridThatIsNotSquare) {
    // 2000 x 650 points with a margin of m take (4 m + 3999) (4 m + 1299) neighbours: 18723 x 16023 is
    // 299,998,629 at m = 3681, and 18727 x 16027 is 300,137,629 at the next. A column or row more at the
    // first would be too many.
    for (const f32 margin : {3681.0F, 3682.0F}) {
        const ConsoleCapture capture;
        const Owned<Stack> stack = settings(2000, 2000.0F, 650.0F, margin);
        EXPECT_EQ(stack_grid_lay(stack.get()), margin < 3682.0F) << margin;
        EXPECT_EQ(stack->grid_m, 650);
    }
}

TEST(StackGridTables, MakesSortedNeighborsCellsLinesAndAnEmptyLayerList) {
    const Owned<Stack> stack = settings(200, 50.0F, 12.5F, 0.3F);
    const ConsoleCapture capture;
    ASSERT_TRUE(stack_grid_lay(stack.get()));
    ASSERT_EQ(stack->grid_m, 50);
    ASSERT_EQ(stack->margin_cells, 2);
    stack_grid_tables(stack.get());
    // 204 columns and 54 rows with the margin.
    EXPECT_EQ(stack->offset_count, 407 * 107);
    EXPECT_EQ(stack->offset_used, 0);
    EXPECT_EQ(stack->offsets[0].dx, 0);
    EXPECT_EQ(stack->offsets[0].dy, 0);
    EXPECT_EQ(stack->offsets[0].distance, 0.0F);
    for (i32 i = 1; i < stack->offset_count; ++i) {
        ASSERT_LE(stack->offsets[i - 1].distance, stack->offsets[i].distance) << "entry " << i;
    }
    for (i32 i = 0; i < 200 * 50; ++i) {
        ASSERT_EQ(stack->cells[i].height, 0.0F);
        ASSERT_EQ(stack->cells[i].top_layer, 0);
    }
    EXPECT_EQ(stack->layer_count, 0);
    EXPECT_EQ(stack->layer_capacity, 512);
    ASSERT_NE(stack->layers, nullptr);
    EXPECT_EQ(stack->layers[511], nullptr);
}

TEST(StackGridTables, LinePointsAreTenRowsLessTenOverColumnsLessOne) {
    struct Case {
        i32 grid_n, grid_m, points;
    };
    // 10 M - 10 over N - 1, truncated: 490 / 199 = 2.46, 1990 / 199 = 10, 2000 / 199 = 10.05,
    // 1980 / 199 = 9.95, 0 / 199 = 0.
    const Case cases[] = {{200, 50, 2}, {200, 200, 10}, {200, 201, 10}, {200, 199, 9}, {200, 1, 0}};
    for (const Case &test : cases) {
        const Owned<Stack> stack = settings(test.grid_n, 0.0F, 0.0F, 0.0F);
        stack->grid_m = test.grid_m;
        stack->spacing = 0.25F;
        stack_grid_tables(stack.get());
        EXPECT_EQ(stack->line_points, test.points) << test.grid_m;
        EXPECT_EQ(stack->line_vertex_capacity, test.points * 10);
        EXPECT_NE(stack->line_vertices, nullptr);
        EXPECT_EQ(stack->line_step, static_cast<f32>(test.grid_n - 1) / 9.0F);
        EXPECT_EQ(stack->line_vbo, 0U);
        EXPECT_EQ(stack->line_vao, 0U);
    }
    static_assert(sizeof(LineVertex) == 28, "seven f32");
}
