#include <gtest/gtest.h>

#include <cmath>

#include "sim/step_execute.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

static OwnedStep coat(f32 thickness, f32 dop, f32 reflow) {
    OwnedStep step = test_step(STEP_COATING, "SOG coating", "SOG");
    step->step.thickness = thickness;
    step->step.dop = dop;
    step->step.rr = reflow;
    return step;
}

TEST(CoatingRun, FillsAFlatSurfaceToItsThickness) {
    const Owned<Stack> stack = test_stack(200, 4, 0.5F);
    test_surface(stack.get(), 1.25F, 0);
    const ConsoleCapture capture;
    step_execute(stack.get(), &coat(0.5F, 1.0F, 0.0F)->step);
    EXPECT_EQ(capture.narrow(), "Executing SOG coating ... \r\n");
    for (i32 i = 0; i < 800; ++i) {
        ASSERT_EQ(stack->layers[0]->bottom[i], 1.25F);
        ASSERT_EQ(stack->layers[0]->top[i], 1.75F);
        ASSERT_EQ(stack->cells[i].height, 1.75F);
        ASSERT_EQ(stack->cells[i].top_layer, 1) << "one more than the slot";
    }
    EXPECT_STREQ(stack->layers[0]->material_name, "SOG");
    EXPECT_EQ(stack->layers[0]->changed, 1);
}

TEST(CoatingRun, DegreeOfPlanarisationLevelsTheTop) {
    struct Case {
        f32 dop;
        f32 low_top, high_top;
    };
    // Half of the points at 0, half at 1: mean 0.5; film 2.
    const Case cases[] = {{0.0F, 2.0F, 3.0F}, {0.5F, 2.25F, 2.75F}, {1.0F, 2.5F, 2.5F}};
    for (const Case &test : cases) {
        const Owned<Stack> stack = test_stack(8, 3, 0.5F);
        for (i32 i = 0; i < 24; ++i) {
            stack->cells[i].height = i % 8 < 4 ? 0.0F : 1.0F;
        }
        const ConsoleCapture capture;
        step_execute(stack.get(), &coat(2.0F, test.dop, 0.0F)->step);
        EXPECT_EQ(stack->layers[0]->top[3], test.low_top) << test.dop;
        EXPECT_EQ(stack->layers[0]->top[4], test.high_top) << test.dop;
        EXPECT_EQ(stack->layers[0]->bottom[4], 1.0F);
    }
}

TEST(CoatingRun, PointsAboveTheFilmStayBare) {
    const Owned<Stack> stack = test_stack(8, 2, 0.5F);
    test_surface(stack.get(), 0.0F, 3);
    stack->cells[5] = {4.0F, 2};
    const ConsoleCapture capture;
    // Mean 4 / 16 = 0.25, top 0.75: the point at 4 is higher.
    step_execute(stack.get(), &coat(0.5F, 1.0F, 0.0F)->step);
    const Layer *layer = stack->layers[0];
    EXPECT_EQ(layer->top[5], 4.0F);
    EXPECT_EQ(layer->bottom[5], 4.0F);
    EXPECT_EQ(stack->cells[5].height, 4.0F);
    EXPECT_EQ(stack->cells[5].top_layer, 2) << "the cell keeps its surface";
    EXPECT_EQ(layer->top[4], 0.75F);
    EXPECT_EQ(stack->cells[4].top_layer, 1);
}

TEST(CoatingRun, ReflowSmoothsOverItsShareOfTheThickness) {
    const Owned<Stack> stack = test_stack(200, 1, 0.5F);
    for (i32 n = 100; n < 200; ++n) {
        stack->cells[n].height = 1.0F;
    }
    const ConsoleCapture capture;
    // Constant film of 2; 0.25 * 2 = 0.5 um is one column to each side.
    step_execute(stack.get(), &coat(2.0F, 0.0F, 0.25F)->step);
    const Layer *layer = stack->layers[0];
    EXPECT_EQ(layer->top[98], 2.0F);
    EXPECT_EQ(layer->top[99], static_cast<f32>(7.0 / 3.0));
    EXPECT_EQ(layer->top[100], static_cast<f32>(8.0 / 3.0));
    EXPECT_EQ(layer->top[101], 3.0F);
    EXPECT_EQ(layer->top[199], 3.0F) << "the mean of the two points in the grid";
}

TEST(CoatingRun, UnusualThicknessesLeaveNoFilm) {
    for (const f32 thickness : {std::nanf(""), -0.5F, -HUGE_VALF}) {
        const Owned<Stack> stack = test_stack(6, 5, 0.5F);
        test_surface(stack.get(), 1.0F, 8);
        const ConsoleCapture capture;
        step_execute(stack.get(), &coat(thickness, 1.0F, 0.5F)->step);
        EXPECT_TRUE(layer_is_empty(stack->layers[0])) << thickness;
        EXPECT_EQ(stack->cells[3].top_layer, 8) << thickness;
    }
}
