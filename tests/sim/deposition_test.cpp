#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "sim/step_execute.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

static OwnedStep film(f32 thickness, f32 step_coverage) {
    OwnedStep step = test_step(STEP_DEPOSITION, "OX deposition", "OX");
    step->step.thickness = thickness;
    step->step.step_coverage = step_coverage;
    return step;
}

// Columns from `edge` on lie 1 higher.
static Owned<Stack> stepped_stack(i32 grid_n, i32 grid_m, f32 spacing, i32 edge) {
    Owned<Stack> stack = test_stack(grid_n, grid_m, spacing);
    for (i32 m = 0; m < grid_m; ++m) {
        for (i32 n = edge; n < grid_n; ++n) {
            stack->cells[test_point(stack.get(), n, m)].height = 1.0F;
        }
    }
    return stack;
}

TEST(DepositionRun, GrowsStraightUpWithoutStepCoverage) {
    const Owned<Stack> stack = stepped_stack(200, 5, 0.125F, 100);
    const ConsoleCapture capture;
    // The smoothing radius of 0.05 is below the spacing, so nothing is averaged.
    step_execute(stack.get(), &film(0.5F, 0.0F)->step);
    EXPECT_EQ(capture.narrow(), "Executing OX deposition ... \r\n");
    ASSERT_EQ(stack->layer_count, 1);
    const Layer *layer = stack->layers[0];
    for (i32 n = 0; n < 200; ++n) {
        const i64 point = test_point(stack.get(), n, 3);
        const f32 surface = n < 100 ? 0.0F : 1.0F;
        ASSERT_EQ(layer->bottom[point], surface) << n;
        ASSERT_EQ(layer->top[point], surface + 0.5F) << n;
        ASSERT_EQ(stack->cells[point].height, surface + 0.5F) << n;
        ASSERT_EQ(stack->cells[point].top_layer, 1) << "one more than the slot where there is a film";
    }
    EXPECT_STREQ(layer->material_name, "OX");
    EXPECT_EQ(layer->changed, 1);
}

TEST(DepositionRun, ConformalFilmReachesSidewaysByItsThickness) {
    const Owned<Stack> stack = stepped_stack(200, 5, 0.125F, 100);
    const ConsoleCapture capture;
    step_execute(stack.get(), &film(0.5F, 1.0F)->step);
    const Layer *layer = stack->layers[0];
    for (i32 n = 0; n < 200; ++n) {
        // 0.5 um are 4 columns.
        const i64 point = test_point(stack.get(), n, 2);
        ASSERT_EQ(layer->top[point], n < 96 ? 0.5F : 1.5F) << n;
        ASSERT_EQ(layer->bottom[point], n < 100 ? 0.0F : 1.0F) << n;
    }
}

TEST(DepositionRun, ConformalCornersAreRoundedByTheDisc) {
    // A pillar of one point in a wide field: the film's plan is the disc itself.
    const Owned<Stack> stack = test_stack(21, 21, 0.125F);
    stack->cells[test_point(stack.get(), 10, 10)].height = 1.0F;
    const ConsoleCapture capture;
    step_execute(stack.get(), &film(0.5F, 1.0F)->step);
    for (i32 m = 0; m < 21; ++m) {
        for (i32 n = 0; n < 21; ++n) {
            const bool inside = (n - 10) * (n - 10) + (m - 10) * (m - 10) <= 16;
            EXPECT_EQ(stack->layers[0]->top[test_point(stack.get(), n, m)], inside ? 1.5F : 0.5F)
                << n << ", " << m;
        }
    }
}

TEST(DepositionRun, SmoothsOverATenthOfTheThickness) {
    const Owned<Stack> stack = stepped_stack(200, 3, 0.125F, 100);
    const ConsoleCapture capture;
    // 2 * 0.1 = 0.2 um: the centre and its eight neighbours (0.1768 um).
    step_execute(stack.get(), &film(2.0F, 0.0F)->step);
    const Layer *layer = stack->layers[0];
    // Columns of 2 and 3: (2 + 2 + 3) / 3 and (2 + 3 + 3) / 3 beside the edge. The last column of
    // the row has fewer points, all alike.
    for (i32 m = 0; m < 3; ++m) {
        EXPECT_EQ(layer->top[test_point(stack.get(), 98, m)], 2.0F);
        EXPECT_EQ(layer->top[test_point(stack.get(), 99, m)], static_cast<f32>(7.0 / 3.0));
        EXPECT_EQ(layer->top[test_point(stack.get(), 100, m)], static_cast<f32>(8.0 / 3.0));
        EXPECT_EQ(layer->top[test_point(stack.get(), 101, m)], 3.0F);
        EXPECT_EQ(layer->top[test_point(stack.get(), 199, m)], 3.0F);
    }
}

TEST(DepositionRun, TheSurfaceHasTheTrueIndexOnlyWhereThereIsNoFilm) {
    // A thickness of 0 leaves an absent layer in the list; its cells keep the index of the first pass.
    const Owned<Stack> stack = test_stack(5, 4, 0.5F);
    test_layer(stack.get(), "_SUB_", 0.0F, 1.0F);
    test_surface(stack.get(), 1.0F, 9);
    const ConsoleCapture capture;
    step_execute(stack.get(), &film(0.0F, 0.0F)->step);
    ASSERT_EQ(stack->layer_count, 2);
    EXPECT_TRUE(layer_is_empty(stack->layers[1]));
    EXPECT_EQ(stack->cells[7].height, 1.0F);
    EXPECT_EQ(stack->cells[7].top_layer, 1) << "its slot";
    step_execute(stack.get(), &film(0.5F, 0.0F)->step);
    EXPECT_EQ(stack->cells[7].top_layer, 3) << "one more than slot 2";
}

TEST(DepositionRun, WithoutTitleNothingIsSaid) {
    const Owned<Stack> stack = test_stack(5, 4, 0.5F);
    const OwnedStep step = film(0.5F, 0.0F);
    step->step.title = nullptr;
    const ConsoleCapture capture;
    step_execute(stack.get(), &step->step);
    EXPECT_EQ(capture.narrow(), "");
}

TEST(DepositionRun, UnusualThicknessesRunTheirCourse) {
    const f32 inf = std::numeric_limits<f32>::infinity();
    for (const f32 thickness : {std::nanf(""), inf, -inf, -0.5F, 1000.0F, 3e38F}) {
        for (const f32 step_coverage : {0.0F, 0.5F, 1.0F}) {
            const Owned<Stack> stack = test_stack(9, 7, 0.5F);
            test_surface(stack.get(), 1.0F, 0);
            const ConsoleCapture capture;
            step_execute(stack.get(), &film(thickness, step_coverage)->step);
            EXPECT_EQ(stack->layer_count, 1) << thickness;
            if (!(thickness > 0.0F)) {
                EXPECT_TRUE(layer_is_empty(stack->layers[0])) << thickness << ", " << step_coverage;
            }
        }
    }
}

TEST(DepositionRun, ADiscLargerThanTheGridLevelsTheFilm) {
    const Owned<Stack> stack = stepped_stack(9, 7, 0.5F, 4);
    const ConsoleCapture capture;
    // 100 um of film: every point takes the highest top, 101; the smoothing disc of 10 um holds the
    // whole grid as well.
    step_execute(stack.get(), &film(100.0F, 1.0F)->step);
    for (i32 i = 0; i < 63; ++i) {
        EXPECT_EQ(stack->layers[0]->top[i], 101.0F) << i;
    }
}
