#include <gtest/gtest.h>

#include "platform/memory.h"
#include "sim/step_execute.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

static const char *const WARNING = "WARNING: PR material not found. Perhaps removed in earlier step.\r\n";

TEST(StripRun, RemovesEveryResistAndKeepsTheSlots) {
    const Owned<Stack> stack = test_stack(5, 3, 1.0F);
    test_layer(stack.get(), "_SUB_", 0.0F, 1.0F);
    test_layer(stack.get(), "_PR_", 1.0F, 2.0F);
    test_layer(stack.get(), "OX", 2.0F, 2.5F);
    test_layer(stack.get(), "_PR_", 2.5F, 3.0F);
    test_surface(stack.get(), 3.0F, 4);
    const OwnedStep step = test_step(STEP_STRIP, "photoresist strip");
    const ConsoleCapture capture;
    step_execute(stack.get(), &step->step);
    EXPECT_EQ(capture.narrow(), "Executing photoresist strip ... \r\n");
    EXPECT_EQ(stack->layer_count, 4);
    EXPECT_EQ(stack->layers[1], nullptr);
    EXPECT_EQ(stack->layers[3], nullptr);
    ASSERT_NE(stack->layers[2], nullptr);
    EXPECT_EQ(stack->cells[7].height, 2.5F) << "what lay on the first resist stays in the air";
    EXPECT_EQ(stack->cells[7].top_layer, 2);
    EXPECT_EQ(stack->layers[2]->changed, 0);
}

TEST(StripRun, OtherNamesAreNoResist) {
    for (const char *name : {"_PR", "_PR_2", "_pr_", "PR", ""}) {
        const Owned<Stack> stack = test_stack(3, 3, 1.0F);
        test_layer(stack.get(), name, 0.0F, 1.0F);
        const OwnedStep step = test_step(STEP_STRIP);
        const ConsoleCapture capture;
        step_execute(stack.get(), &step->step);
        EXPECT_NE(stack->layers[0], nullptr) << name;
        EXPECT_EQ(capture.narrow(), "") << "a stack with layers but without resist gets no warning";
    }
}

TEST(StripRun, WithoutResistTheSurfaceIsComputedAnew) {
    const Owned<Stack> stack = test_stack(4, 3, 1.0F);
    test_layer(stack.get(), "OX", 0.0F, 1.0F);
    test_surface(stack.get(), 1.0F, 1);
    const OwnedStep step = test_step(STEP_STRIP);
    const ConsoleCapture capture;
    step_execute(stack.get(), &step->step);
    for (i32 i = 0; i < 12; ++i) {
        EXPECT_EQ(stack->cells[i].height, 1.0F);
        EXPECT_EQ(stack->cells[i].top_layer, 0) << "the true index";
    }
}

TEST(StripRun, WarnsOnlyWhenNoLayerIsLeftBeforeIt) {
    const OwnedStep step = test_step(STEP_STRIP, "last photoresist strip");
    const Owned<Stack> empty = test_stack(3, 3, 1.0F);
    test_surface(empty.get(), 0.5F, 6);
    const ConsoleCapture capture;
    step_execute(empty.get(), &step->step);
    EXPECT_EQ(capture.narrow(), std::string("Executing last photoresist strip ... \r\n") + WARNING);
    EXPECT_EQ(empty->cells[4].height, 0.5F);
    EXPECT_EQ(empty->cells[4].top_layer, 6);
}

TEST(StripRun, AStackOfNullSlotsIsWithoutLayers) {
    const OwnedStep step = test_step(STEP_STRIP);
    const Owned<Stack> stack = test_stack(3, 3, 1.0F);
    test_layer(stack.get(), "_PR_", 0.0F, 1.0F);
    test_surface(stack.get(), 1.0F, 0);
    const ConsoleCapture capture;
    step_execute(stack.get(), &step->step);
    EXPECT_EQ(capture.narrow(), "") << "the resist itself was a layer";
    step_execute(stack.get(), &step->step);
    EXPECT_EQ(capture.narrow(), WARNING);
    EXPECT_EQ(stack->cells[4].height, 1.0F) << "without any layer the surface stays";
}
