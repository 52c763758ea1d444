#include "sim/step_execute.h"

#include <gtest/gtest.h>

#include "platform/memory.h"
#include "sim/stack_layers.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

TEST(StepExecute, NamesTheTitleAndOnlyIt) {
    const Owned<Stack> stack = test_stack(3, 3, 1.0F);
    const OwnedStep step = test_step(STEP_ETCH, "gate etching");
    step->step.name = const_cast<char *>("gate");
    const OwnedStep untitled = test_step(STEP_ETCH);
    untitled->step.name = const_cast<char *>("gate");
    const ConsoleCapture capture;
    step_execute(stack.get(), &step->step);
    EXPECT_EQ(capture.narrow(), "Executing gate etching ... \r\n");
    step_execute(stack.get(), &untitled->step);
    EXPECT_EQ(capture.narrow(), "Executing gate etching ... \r\n");
}

TEST(StepExecute, UnknownKindsDoNothing) {
    for (const i32 kind : {-1, 1, 4, 5, 10, 1000, I32_MAX, I32_MIN}) {
        const Owned<Stack> stack = test_stack(4, 3, 1.0F);
        test_surface(stack.get(), 1.5F, 3);
        const OwnedStep step = test_step(kind, "nothing", "OX");
        step->step.thickness = 1.0F;
        const i64 before = memory_live_blocks();
        const ConsoleCapture capture;
        step_execute(stack.get(), &step->step);
        EXPECT_EQ(capture.narrow(), "") << kind;
        EXPECT_EQ(memory_live_blocks(), before) << kind;
        EXPECT_EQ(stack->layer_count, 0) << kind;
        EXPECT_EQ(stack->cells[0].height, 1.5F) << kind;
        EXPECT_EQ(stack->cells[0].top_layer, 3) << kind;
    }
}

TEST(StepExecute, EachKindRunsItsStep) {
    struct Case {
        i32 kind;
        i32 layers_after;
        f32 surface_after;
    };
    // On a film of OX from 0 to 1 under resist from 1 to 2 of half the etch rate: a film of 0.5 on top;
    // an etch of 0.5 takes 0.25 of the resist; the strip leaves the OX; the release of OX leaves the
    // resist hanging.
    // clang-format off
    const Case cases[] = {
        {STEP_COATING, 3, 2.5F},
        {STEP_DEPOSITION, 3, 2.5F},
        {STEP_PHOTO, 3, 2.5F},
        {STEP_ETCH, 2, 1.75F},
        {STEP_STRIP, 1, 1.0F},
        {STEP_RELEASE, 2, 2.0F},
    };
    // clang-format on
    for (const Case &test : cases) {
        const Owned<Stack> stack = test_stack(6, 5, 1.0F);
        test_layer(stack.get(), "OX", 0.0F, 1.0F);
        test_layer(stack.get(), "_PR_", 1.0F, 2.0F);
        test_surface(stack.get(), 2.0F, 1);
        const OwnedStep step = test_step(test.kind, "a step", "NIT");
        step->step.thickness = 0.5F;
        step->step.depth = 0.5F;
        test_targets(step.get(), {"OX"});
        const ConsoleCapture capture;
        step_execute(stack.get(), &step->step);
        EXPECT_EQ(capture.narrow(), "Executing a step ... \r\n") << test.kind;
        EXPECT_EQ(stack_count_layers(stack.get()), test.layers_after) << test.kind;
        EXPECT_EQ(stack->cells[7].height, test.surface_after) << test.kind;
    }
}

TEST(StepExecute, EveryKindRunsOnAStackWithoutLayers) {
    for (const i32 kind : {0, 2, 6, 7, 8, 9}) {
        const Owned<Stack> stack = test_stack(3, 3, 1.0F);
        const OwnedStep step = test_step(kind, "a step", "OX");
        step->step.thickness = 1.0F;
        step->step.depth = 1.0F;
        step->step.iso = 1.0F;
        const ConsoleCapture capture;
        step_execute(stack.get(), &step->step);
        EXPECT_NE(capture.narrow(), "") << kind;
    }
}
