#include <gtest/gtest.h>

#include <cmath>

#include "sim/step_execute.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

static OwnedStep etch(f32 depth, f32 iso, std::initializer_list<const char *> targets) {
    OwnedStep step = test_step(STEP_ETCH, "etching of ox");
    step->step.depth = depth;
    step->step.iso = iso;
    test_targets(step.get(), targets);
    return step;
}

static std::string missing(const char *material) {
    return std::string("WARNING: material ") + material + " not found. Perhaps removed in earlier step.\r\n";
}

TEST(EtchRun, TakesTargetsAtFullRateAndResistAtHalf) {
    struct Case {
        f32 resist;  // thickness, on 1 um of target
        f32 depth;
        f32 resist_top, target_top;
        i32 surface_layer;
    };
    // clang-format off
    const Case cases[] = {
        {0.5F, 0.25F, 2.375F, 2.0F, 2},       // twice 0.5 is more than 0.25: half of the depth, 0.125, goes
        {0.125F, 0.5F, 2.0F, 1.75F, 1},       // twice 0.125 is 0.25, the other 0.25 goes into the target
        {0.125F, 0.25F, 2.0F, 2.0F, 1},       // twice 0.125 is all there is; the bare target is the surface
        {0.0F, 0.25F, 2.0F, 1.75F, 1},        // without resist all of the depth goes into the target
        {0.5F, 10.0F, 2.0F, 1.0F, 0},         // 1 for the resist, 1 for the target: the substrate stops it
        // In units of 2^-25, in which 0.3 is 10066330: 2.1 - 2 is 3355440 and uses up 6710880; the 3355450 that
        // are left, taken from 2, are half way between two numbers, and the even one is 15938354 / 2^23.
        {0.1F, 0.3F, 2.0F, 15938354.0F / 8388608.0F, 1},
    };
    // clang-format on
    for (const Case &test : cases) {
        const Owned<Stack> stack = test_stack(6, 5, 0.5F);
        test_layer(stack.get(), "_SUB_", 0.0F, 1.0F);
        test_layer(stack.get(), "OX", 1.0F, 2.0F);
        test_layer(stack.get(), "_PR_", 2.0F, 2.0F + test.resist);
        test_surface(stack.get(), 2.0F + test.resist, 2);
        const ConsoleCapture capture;
        step_execute(stack.get(), &etch(test.depth, 0.0F, {"OX"})->step);
        EXPECT_EQ(capture.narrow(), "Executing etching of ox ... \r\n");
        const f32 tops[] = {1.0F, test.target_top, test.resist_top};  // the substrate is no target
        for (i32 slot = 0; slot < 3; ++slot) {
            EXPECT_EQ(stack->layers[slot]->top[7], tops[slot]) << test.resist << " resist, " << test.depth;
        }
        EXPECT_EQ(stack->cells[7].height, tops[test.surface_layer])
            << test.resist << " resist, " << test.depth;
        EXPECT_EQ(stack->cells[7].top_layer, test.surface_layer) << test.resist << " resist, " << test.depth;
    }
}

TEST(EtchRun, ThinResistLeavesTheRestOfTheDepthForTheTarget) {
    const Owned<Stack> stack = test_stack(4, 4, 0.5F);
    test_layer(stack.get(), "OX", 0.0F, 1.0F);
    test_layer(stack.get(), "_PR_", 1.0F, 1.1F);
    const ConsoleCapture capture;
    step_execute(stack.get(), &etch(0.3F, 0.0F, {"OX"})->step);
    EXPECT_EQ(stack->layers[1]->top[5], 1.0F);
    EXPECT_NEAR(stack->layers[0]->top[5], 0.9, 1e-6);
}

TEST(EtchRun, ThickResistLosesHalfTheDepth) {
    const Owned<Stack> stack = test_stack(4, 4, 0.5F);
    test_layer(stack.get(), "OX", 0.0F, 1.0F);
    test_layer(stack.get(), "_PR_", 1.0F, 1.5F);
    const ConsoleCapture capture;
    step_execute(stack.get(), &etch(0.3F, 0.0F, {"OX"})->step);
    EXPECT_NEAR(stack->layers[1]->top[5], 1.35, 1e-6);
    EXPECT_EQ(stack->layers[0]->top[5], 1.0F);
}

TEST(EtchRun, StopsOnWhatIsNoTarget) {
    const Owned<Stack> stack = test_stack(4, 4, 0.5F);
    test_layer(stack.get(), "A", 0.0F, 1.0F);
    test_layer(stack.get(), "STOP", 1.0F, 1.25F);
    test_layer(stack.get(), "A", 1.25F, 2.0F);
    test_layer(stack.get(), "B", 2.0F, 3.0F);
    test_surface(stack.get(), 3.0F, 4);
    const ConsoleCapture capture;
    step_execute(stack.get(), &etch(100.0F, 0.0F, {"A", "B"})->step);
    EXPECT_TRUE(layer_is_empty(stack->layers[3]));
    EXPECT_TRUE(layer_is_empty(stack->layers[2]));
    EXPECT_EQ(stack->layers[1]->top[5], 1.25F);
    EXPECT_EQ(stack->layers[0]->top[5], 1.0F) << "nothing below the stop is touched";
    EXPECT_EQ(stack->cells[5].height, 1.25F);
    EXPECT_EQ(stack->cells[5].top_layer, 1);
}

TEST(EtchRun, MarksExactlyTheEtchedMaterialsAsChanged) {
    const Owned<Stack> stack = test_stack(4, 4, 0.5F);
    test_layer(stack.get(), "_SUB_", 0.0F, 1.0F);
    test_layer(stack.get(), "OX", 1.0F, 2.0F);
    test_layer(stack.get(), "gone", 2.0F, 2.0F);
    test_layer(stack.get(), "_PR_", 2.0F, 3.0F);
    test_layer(stack.get(), "OX2", 3.0F, 4.0F);
    test_layer(stack.get(), "ox", 4.0F, 5.0F);
    test_layer_remove(stack.get(), 2);
    const ConsoleCapture capture;
    step_execute(stack.get(), &etch(0.5F, 0.0F, {"OX"})->step);
    const i32 changed[6] = {0, 1, -1, 1, 0, 0};
    for (i32 i = 0; i < 6; ++i) {
        if (stack->layers[i] != nullptr) {
            EXPECT_EQ(stack->layers[i]->changed, changed[i]) << "slot " << i;
        }
    }
    EXPECT_EQ(stack->layers[1]->top[3], 2.0F) << "under a material that stops the etch";
}

TEST(EtchRun, AMissingMaterialIsToldAndTheOthersAreEtched) {
    const Owned<Stack> stack = test_stack(4, 4, 0.5F);
    test_layer(stack.get(), "OX", 0.0F, 1.0F);
    const ConsoleCapture capture;
    step_execute(stack.get(), &etch(0.25F, 0.0F, {"Ox", "OX", "NIT"})->step);
    EXPECT_EQ(capture.narrow(), "Executing etching of ox ... \r\n" + missing("Ox") + missing("NIT"));
    EXPECT_EQ(stack->layers[0]->top[5], 0.75F);
}

TEST(EtchRun, ResistNamedAsATargetIsStillEtchedAtHalfRate) {
    const Owned<Stack> stack = test_stack(4, 4, 0.5F);
    test_layer(stack.get(), "_PR_", 0.0F, 1.0F);
    const ConsoleCapture capture;
    step_execute(stack.get(), &etch(0.5F, 0.0F, {"_PR_"})->step);
    EXPECT_EQ(stack->layers[0]->top[5], 0.75F);
    EXPECT_EQ(capture.narrow(), "Executing etching of ox ... \r\n");
}

// Target from 0.5 to 2 on a substrate under resist from 2 to 2.5 that is open in columns 90 to 109.
static Owned<Stack> opened_stack() {
    Owned<Stack> stack = test_stack(200, 5, 0.125F);
    test_layer(stack.get(), "_SUB_", 0.0F, 0.5F);
    test_layer(stack.get(), "OX", 0.5F, 2.0F);
    Layer *resist = test_layer(stack.get(), "_PR_", 2.0F, 2.5F);
    test_surface(stack.get(), 2.5F, 2);
    for (i32 m = 0; m < 5; ++m) {
        for (i32 n = 90; n < 110; ++n) {
            resist->top[test_point(stack.get(), n, m)] = 2.0F;
            stack->cells[test_point(stack.get(), n, m)] = {2.0F, 1};
        }
    }
    return stack;
}

TEST(EtchRun, StraightDownThroughAnOpening) {
    const Owned<Stack> stack = opened_stack();
    const ConsoleCapture capture;
    step_execute(stack.get(), &etch(0.5F, 0.0F, {"OX"})->step);
    for (i32 n = 0; n < 200; ++n) {
        const bool open = n >= 90 && n < 110;
        const i64 point = test_point(stack.get(), n, 2);
        ASSERT_EQ(stack->layers[1]->top[point], open ? 1.5F : 2.0F) << n;
        ASSERT_EQ(stack->layers[2]->top[point], open ? 2.0F : 2.25F) << n;
        ASSERT_EQ(stack->cells[point].height, open ? 1.5F : 2.25F) << n;
        ASSERT_EQ(stack->cells[point].top_layer, open ? 1 : 2) << n;
    }
}

TEST(EtchRun, IsotropicEtchWidensTheOpening) {
    const Owned<Stack> stack = opened_stack();
    const ConsoleCapture capture;
    step_execute(stack.get(), &etch(0.5F, 1.0F, {"OX"})->step);
    for (i32 n = 0; n < 200; ++n) {
        // 0.5 um are 4 columns: the resist there is taken down to the target's surface, and then the
        // target under it is etched like that in the opening.
        const bool open = n >= 86 && n < 114;
        const i64 point = test_point(stack.get(), n, 2);
        ASSERT_EQ(stack->layers[1]->top[point], open ? 1.5F : 2.0F) << n;
        ASSERT_EQ(stack->layers[2]->top[point], open ? 2.0F : 2.25F) << n;
    }
}

TEST(EtchRun, UndercutsAMaterialThatItDoesNotEtch) {
    // A hard mask from 2 to 2.5 instead of resist, the target in its opening already down to 1.
    const Owned<Stack> stack = opened_stack();
    stack->layers[2]->material_name[0] = 'X';
    for (i32 m = 0; m < 5; ++m) {
        for (i32 n = 90; n < 110; ++n) {
            stack->layers[1]->top[test_point(stack.get(), n, m)] = 1.0F;
            stack->layers[2]->bottom[test_point(stack.get(), n, m)] = 1.0F;
            stack->layers[2]->top[test_point(stack.get(), n, m)] = 1.0F;
            stack->cells[test_point(stack.get(), n, m)] = {1.0F, 1};
        }
    }
    const ConsoleCapture capture;
    step_execute(stack.get(), &etch(0.25F, 1.0F, {"OX"})->step);
    for (i32 n = 0; n < 200; ++n) {
        const i64 point = test_point(stack.get(), n, 2);
        f32 expected = 2.0F;
        if (n >= 90 && n < 110) {
            expected = 0.75F;
        } else if (n >= 88 && n < 112) {
            expected = 1.0F;  // down to the eroded surface; the mask above stops the vertical pass
        }
        ASSERT_EQ(stack->layers[1]->top[point], expected) << n;
        ASSERT_EQ(stack->layers[2]->changed, 0);
    }
    EXPECT_EQ(stack->layers[2]->top[test_point(stack.get(), 89, 2)], 2.5F);
    EXPECT_EQ(stack->cells[test_point(stack.get(), 89, 2)].height, 2.5F);
}

TEST(EtchRun, UnusualDepthsRunTheirCourse) {
    for (const f32 depth : {std::nanf(""), HUGE_VALF, -0.5F, 1e30F}) {
        for (const f32 iso : {0.0F, 0.5F, 1.0F}) {
            const Owned<Stack> stack = opened_stack();
            const ConsoleCapture capture;
            step_execute(stack.get(), &etch(depth, iso, {"OX"})->step);
            EXPECT_EQ(stack->layers[0]->top[5], 0.5F);
        }
    }
}

static OwnedStep release(std::initializer_list<const char *> targets) {
    OwnedStep step = test_step(STEP_RELEASE, "etching of sac");
    test_targets(step.get(), targets);
    return step;
}

TEST(MaterialRemoveRun, LeavesWhatLiesAboveInTheAir) {
    const Owned<Stack> stack = test_stack(5, 4, 0.5F);
    test_layer(stack.get(), "_SUB_", 0.0F, 1.0F);
    test_layer(stack.get(), "SAC", 1.0F, 2.0F);
    test_layer(stack.get(), "BEAM", 2.0F, 2.5F);
    for (i32 m = 0; m < 4; ++m) {
        stack->layers[2]->top[test_point(stack.get(), 4, m)] = 2.0F;
    }
    test_surface(stack.get(), 9.0F, 3);
    const ConsoleCapture capture;
    step_execute(stack.get(), &release({"SAC"})->step);
    EXPECT_EQ(capture.narrow(), "Executing etching of sac ... \r\n");
    EXPECT_TRUE(layer_is_empty(stack->layers[1]));
    EXPECT_EQ(stack->layers[1]->top[0], 1.0F);
    EXPECT_EQ(stack->layers[1]->changed, 1);
    EXPECT_EQ(stack->layers[2]->changed, 0);
    EXPECT_EQ(stack->layers[2]->bottom[0], 2.0F);
    EXPECT_EQ(stack->layers[2]->top[0], 2.5F);
    EXPECT_EQ(stack->layer_count, 3) << "the empty layer stays in the list";
    EXPECT_EQ(stack->cells[0].height, 2.5F);
    EXPECT_EQ(stack->cells[0].top_layer, 2);
    EXPECT_EQ(stack->cells[4].height, 2.0F) << "absent there, present beside";
    EXPECT_EQ(stack->cells[4].top_layer, 2);
}

TEST(MaterialRemoveRun, RemovesEveryLayerOfItsTargetsAndTellsTheMissing) {
    const Owned<Stack> stack = test_stack(5, 4, 0.5F);
    test_layer(stack.get(), "A", 0.0F, 1.0F);
    test_layer(stack.get(), "_PR_", 1.0F, 2.0F);
    test_layer(stack.get(), "A", 2.0F, 3.0F);
    test_layer(stack.get(), "B", 3.0F, 4.0F);
    const ConsoleCapture capture;
    step_execute(stack.get(), &release({"C", "A"})->step);
    EXPECT_EQ(capture.narrow(), "Executing etching of sac ... \r\n" + missing("C"));
    EXPECT_TRUE(layer_is_empty(stack->layers[0]));
    EXPECT_TRUE(layer_is_empty(stack->layers[2]));
    EXPECT_EQ(stack->layers[1]->top[0], 2.0F) << "resist is nothing special here";
    EXPECT_EQ(stack->layers[1]->changed, 0);
    EXPECT_EQ(stack->cells[0].top_layer, 3);
}

TEST(MaterialRemoveRun, AnAbsentTitleIsShownAsTheCLibraryShowsIt) {
    const Owned<Stack> stack = test_stack(3, 3, 0.5F);
    const OwnedStep step = release({});
    step->step.title = nullptr;
    const ConsoleCapture capture;
    step_execute(stack.get(), &step->step);
    EXPECT_EQ(capture.narrow(), "Executing (null) ... \r\n");
}

TEST(MaterialRemoveRun, SkipsFreedSlots) {
    const Owned<Stack> stack = test_stack(3, 3, 0.5F);
    test_layer(stack.get(), "A", 0.0F, 1.0F);
    test_layer(stack.get(), "A", 1.0F, 2.0F);
    test_layer_remove(stack.get(), 0);
    const ConsoleCapture capture;
    step_execute(stack.get(), &release({"A"})->step);
    EXPECT_TRUE(layer_is_empty(stack->layers[1]));
}
