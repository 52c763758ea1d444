#include <gtest/gtest.h>

#include <cmath>

#include "sim/step_execute.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

static const char *const ANNOUNCED = "Executing R1 photo ... \r\n";
static const char *const CLIPPED =
    "WARNING: CD of layer is smaller than photo resist thickness: clipping taper angle to 90 degrees\r\n";

static OwnedStep photo(i32 mask_id, i32 mask_type, f32 thickness, f32 taper) {
    OwnedStep step = test_step(STEP_PHOTO, "R1 photo", nullptr);
    step->step.label = const_cast<char *>("PR");
    step->step.mask_id = mask_id;
    step->step.mask_type = mask_type;
    step->step.thickness = thickness;
    step->step.taper = taper;
    return step;
}

TEST(PhotoRun, WithoutPolygonsAClearMaskKeepsAllResistAndADarkOneNone) {
    for (const i32 mask_type : {0, 1}) {
        const Owned<Stack> stack = test_stack(12, 8, 0.25F, 1);
        test_surface(stack.get(), 1.0F, 4);
        test_rectangle(stack.get(), 6, 0.5F, 0.5F, 1.5F, 1.5F);
        const ConsoleCapture capture;
        step_execute(stack.get(), &photo(5, mask_type, 2.0F, 80.0F)->step);
        EXPECT_EQ(capture.narrow(), ANNOUNCED) << "no polygon, no critical dimension";
        ASSERT_EQ(stack->layer_count, 1);
        const Layer *layer = stack->layers[0];
        EXPECT_STREQ(layer->material_name, "_PR_");
        EXPECT_STREQ(layer->legend_name, "PR");
        for (i32 i = 0; i < 96; ++i) {
            ASSERT_EQ(layer->bottom[i], 1.0F);
            ASSERT_EQ(layer->top[i], mask_type == 0 ? 3.0F : 1.0F);
            ASSERT_EQ(stack->cells[i].height, mask_type == 0 ? 3.0F : 1.0F);
            ASSERT_EQ(stack->cells[i].top_layer, mask_type == 0 ? 1 : 4);
        }
    }
}

TEST(PhotoRun, AMaskKeepsOrOpensTheResistOverItsPolygons) {
    // The square covers x and y from 1.0 to 2.0 of the padded frame: padded columns and rows 8 to 15
    // at a spacing of 0.125, which are columns and rows 5 to 12 behind a margin of 3.
    for (const i32 mask_type : {0, 1}) {
        const Owned<Stack> stack = test_stack(20, 18, 0.125F, 3);
        test_rectangle(stack.get(), 7, 1.0F, 1.0F, 2.0F, 2.0F);
        test_rectangle(stack.get(), 8, 0.0F, 0.0F, 3.0F, 3.0F);
        const ConsoleCapture capture;
        step_execute(stack.get(), &photo(7, mask_type, 0.5F, 90.0F)->step);
        EXPECT_EQ(capture.narrow(), ANNOUNCED);
        for (i32 m = 0; m < 18; ++m) {
            for (i32 n = 0; n < 20; ++n) {
                const bool over = n >= 5 && n <= 12 && m >= 5 && m <= 12;
                const bool resist = over == (mask_type == 1);
                const i64 point = test_point(stack.get(), n, m);
                ASSERT_EQ(stack->layers[0]->top[point], resist ? 0.5F : 0.0F) << n << ", " << m;
                ASSERT_EQ(stack->cells[point].top_layer, resist ? 1 : 0) << n << ", " << m;
            }
        }
    }
}

// As above, the square on layer 66 of datatype 44, and one of datatype 20 that covers all.
TEST(PhotoRun, ADatatypeOpensTheResistOverItsPolygonsOnly) {
    for (const bool one_datatype : {true, false}) {
        const Owned<Stack> stack = test_stack(20, 18, 0.125F, 3);
        test_rectangle(stack.get(), 66, 0.0F, 0.0F, 4.0F, 4.0F, 20);
        test_rectangle(stack.get(), 66, 1.0F, 1.0F, 2.0F, 2.0F, 44);
        test_rectangle(stack.get(), 67, 0.0F, 0.0F, 4.0F, 4.0F, 44);
        const OwnedStep step = photo(66, 0, 0.5F, 90.0F);
        step->step.one_datatype = one_datatype;
        step->step.mask_datatype = 44;
        const ConsoleCapture capture;
        step_execute(stack.get(), &step->step);
        for (i32 m = 0; m < 18; ++m) {
            for (i32 n = 0; n < 20; ++n) {
                const bool over = !one_datatype || (n >= 5 && n <= 12 && m >= 5 && m <= 12);
                ASSERT_EQ(stack->layers[0]->top[test_point(stack.get(), n, m)], over ? 0.0F : 0.5F)
                    << n << ", " << m;
            }
        }
    }
}

// The smallest side is that of the datatype's polygons: 0.25 of the strip is less than the resist is thick,
// the square's 1.0 is not.
TEST(PhotoRun, ADatatypesSmallestSideDecidesAboutTheTaper) {
    for (const i32 datatype : {20, 44}) {
        const Owned<Stack> stack = test_stack(20, 18, 0.125F, 3);
        test_rectangle(stack.get(), 66, 1.0F, 1.0F, 1.25F, 2.0F, 20);
        test_rectangle(stack.get(), 66, 1.0F, 1.0F, 2.0F, 2.0F, 44);
        const OwnedStep step = photo(66, 1, 0.5F, 80.0F);
        step->step.one_datatype = true;
        step->step.mask_datatype = datatype;
        const ConsoleCapture capture;
        step_execute(stack.get(), &step->step);
        EXPECT_EQ(capture.narrow(), datatype == 20 ? std::string(ANNOUNCED) + CLIPPED : ANNOUNCED);
    }
}

TEST(PhotoRun, ResolutionRoundsTheCornersOfTheMask) {
    const Owned<Stack> stack = test_stack(20, 18, 0.125F, 3);
    test_rectangle(stack.get(), 7, 1.0F, 1.0F, 2.0F, 2.0F);
    const OwnedStep step = photo(7, 1, 0.5F, 90.0F);
    step->step.resolution = 0.25F;
    const ConsoleCapture capture;
    step_execute(stack.get(), &step->step);
    const Layer *layer = stack->layers[0];
    // A disc of radius 0.125: the centre and four neighbours. A corner of the square has 3 of 5 set
    // and stays; a point outside an edge has 1 of 5 and stays open.
    EXPECT_EQ(layer->top[test_point(stack.get(), 5, 5)], 0.5F);
    EXPECT_EQ(layer->top[test_point(stack.get(), 4, 7)], 0.0F);
    step->step.resolution = 0.5F;
    step_execute(stack.get(), &step->step);
    // Radius 0.25: 13 points. The corner has itself, 2 right, 2 up and 1 diagonal: 6 of 13, cut off;
    // its neighbour along the edge has 1 more to the left, and 1 more diagonal: 8 of 13.
    EXPECT_EQ(stack->layers[1]->top[test_point(stack.get(), 5, 5)],
              stack->layers[1]->bottom[test_point(stack.get(), 5, 5)]);
    EXPECT_GT(stack->layers[1]->top[test_point(stack.get(), 6, 5)],
              stack->layers[1]->bottom[test_point(stack.get(), 6, 5)]);
}

TEST(PhotoRun, ResistThickerThanTheFeatureGetsVerticalWalls) {
    const Owned<Stack> stack = test_stack(20, 18, 0.125F, 3);
    test_rectangle(stack.get(), 7, 1.0F, 1.0F, 2.0F, 2.5F);
    const ConsoleCapture capture;
    step_execute(stack.get(), &photo(7, 1, 1.125F, 80.0F)->step);
    EXPECT_EQ(capture.narrow(), std::string(ANNOUNCED) + CLIPPED);
    EXPECT_EQ(stack->layers[0]->top[test_point(stack.get(), 5, 5)], 1.125F);
    EXPECT_EQ(stack->layers[0]->top[test_point(stack.get(), 4, 5)], 0.0F);
}

TEST(PhotoRun, WarnsOnlyAboveTheFeatureAndBelowNinetyDegrees) {
    struct Case {
        f32 thickness, taper;
        bool warned;
    };
    // The smallest side is 1.
    // clang-format off
    const Case cases[] = {
        {1.0F, 80.0F, false},
        {1.0F, 89.9F, false},
        {1.001F, 80.0F, true},
        {1.001F, 89.9F, true},
        {1.001F, 90.0F, false},
        {5.0F, 120.0F, false},
    };
    // clang-format on
    for (const Case &test : cases) {
        const Owned<Stack> stack = test_stack(20, 18, 0.125F, 3);
        test_rectangle(stack.get(), 7, 1.0F, 1.0F, 2.0F, 2.5F);
        const ConsoleCapture capture;
        step_execute(stack.get(), &photo(7, 1, test.thickness, test.taper)->step);
        EXPECT_EQ(capture.narrow(), std::string(ANNOUNCED) + (test.warned ? CLIPPED : ""))
            << test.thickness << " um, " << test.taper << " degrees";
    }
}

// Height of a resist wall at the distance s from the opening, over a flat surface at `mean`.
static f32 wall_height(f32 top, f32 mean, f32 s, i32 angle_degrees) {
    const f64 tangent = std::tan(static_cast<f64>(angle_degrees) * 3.141592653589793 / 180.0);
    const f64 rise = static_cast<f64>(top) - static_cast<f64>(mean);
    const f64 height = static_cast<f64>(top) - (rise - static_cast<f64>(s) * tangent);
    return static_cast<f32>(height);
}

TEST(PhotoRun, TaperSlopesTheWallsByTheDistanceToTheOpening) {
    // Resist from column 10 on over all rows, nothing left of it.
    for (const f32 taper : {45.0F, 60.0F, 60.9F}) {
        const Owned<Stack> stack = test_stack(200, 7, 0.125F);
        test_surface(stack.get(), 2.0F, 0);
        test_rectangle(stack.get(), 7, 1.25F, 0.0F, 25.0F, 1.0F);
        const ConsoleCapture capture;
        step_execute(stack.get(), &photo(7, 1, 0.5F, taper)->step);
        EXPECT_EQ(capture.narrow(), ANNOUNCED);
        const i32 degrees = static_cast<i32>(taper);
        const f64 tangent = std::tan(degrees * 3.141592653589793 / 180.0);
        const f32 length = static_cast<f32>(0.5 / tangent);
        for (i32 n = 0; n < 30; ++n) {
            const f32 top = stack->layers[0]->top[test_point(stack.get(), n, 3)];
            const f32 s = 0.125F * static_cast<f32>(n - 9);
            f32 expected = 2.5F;
            if (n < 10) {
                expected = 2.0F;
            } else if (s < length) {
                expected = wall_height(2.5F, 2.0F, s, degrees);
            }
            EXPECT_EQ(top, expected) << "column " << n << ", " << taper << " degrees";
        }
        EXPECT_GT(stack->layers[0]->top[test_point(stack.get(), 10, 3)], 2.0F);
        EXPECT_LT(stack->layers[0]->top[test_point(stack.get(), 10, 3)], 2.5F);
    }
}

TEST(PhotoRun, ResistOverALowPointBelowTheMeanKeepsItsTop) {
    // Constant film (dop 0) of 0.5 over a pit 4 deep: its top at -3.5 lies below the mean.
    const Owned<Stack> stack = test_stack(40, 7, 0.125F);
    for (i32 m = 0; m < 7; ++m) {
        stack->cells[test_point(stack.get(), 10, m)].height = -4.0F;
    }
    test_rectangle(stack.get(), 7, 1.25F, 0.0F, 5.0F, 1.0F);
    const OwnedStep step = photo(7, 1, 0.5F, 45.0F);
    step->step.dop = 0.0F;
    const ConsoleCapture capture;
    step_execute(stack.get(), &step->step);
    EXPECT_EQ(stack->layers[0]->top[test_point(stack.get(), 10, 3)], -3.5F);
    EXPECT_LT(stack->layers[0]->top[test_point(stack.get(), 11, 3)], 0.5F) << "the wall beside it slopes";
}

TEST(PhotoRun, ReflowSmoothsTheResist) {
    const Owned<Stack> stack = test_stack(40, 1, 0.125F);
    test_rectangle(stack.get(), 7, 1.25F, 0.0F, 5.0F, 1.0F);
    const OwnedStep step = photo(7, 1, 0.5F, 90.0F);
    step->step.rr = 0.25F;
    const ConsoleCapture capture;
    step_execute(stack.get(), &step->step);
    // 0.25 * 0.5 = 0.125 um is one column to each side; columns up to 9 open.
    const Layer *layer = stack->layers[0];
    EXPECT_EQ(layer->top[8], 0.0F);
    EXPECT_EQ(layer->top[9], static_cast<f32>(0.5 / 3.0)) << "resist flows into the opening";
    EXPECT_EQ(layer->top[10], static_cast<f32>(1.0 / 3.0));
    EXPECT_EQ(layer->top[11], 0.5F);
}

TEST(PhotoRun, UnusualValuesRunTheirCourse) {
    for (const f32 value : {std::nanf(""), HUGE_VALF, -1.0F, 1e30F}) {
        const Owned<Stack> stack = test_stack(9, 7, 0.125F, 2);
        test_rectangle(stack.get(), 7, 0.25F, 0.25F, 0.75F, 1.0F);
        const OwnedStep step = photo(7, 1, value, 80.0F);
        const ConsoleCapture capture;
        step_execute(stack.get(), &step->step);
        step->step.thickness = 0.5F;
        step->step.taper = value;
        step_execute(stack.get(), &step->step);
        step->step.taper = 80.0F;
        step->step.resolution = value;
        step_execute(stack.get(), &step->step);
        EXPECT_EQ(stack->layer_count, 3);
    }
}
