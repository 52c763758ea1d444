#include "sim/film.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/test_stack.h"

TEST(FilmCreate, CopiesNamesAndColor) {
    const Owned<Stack> stack = test_stack(3, 2, 0.5F);
    const OwnedStep step = test_step(STEP_DEPOSITION, "OX deposition", "OX");
    step->step.label = const_cast<char *>("Oxide");
    step->step.color_r = 0.25F;
    step->step.color_g = 0.5F;
    step->step.color_b = 0.75F;
    step->step.alpha = 0.125F;
    const Owned<Layer> layer(film_create(stack.get(), &step->step, "_PR_"));
    EXPECT_STREQ(layer->material_name, "_PR_");
    EXPECT_STREQ(layer->legend_name, "Oxide");
    EXPECT_NE(layer->legend_name, step->step.label) << "a copy of its own";
    const f32 color[4] = {0.25F, 0.5F, 0.75F, 0.125F};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(layer->color[i], color[i]);
    }
    EXPECT_EQ(layer->changed, 1);
    EXPECT_EQ(layer->grid_n, 3U);
    EXPECT_EQ(layer->grid_m, 2U);
    EXPECT_EQ(layer->spacing, 0.5F);
}

TEST(FilmCreate, AbsentNamesStayAbsent) {
    const Owned<Stack> stack = test_stack(3, 2, 0.5F);
    const OwnedStep step = test_step(STEP_DEPOSITION);
    const Owned<Layer> layer(film_create(stack.get(), &step->step, nullptr));
    EXPECT_EQ(layer->material_name, nullptr);
    EXPECT_EQ(layer->legend_name, nullptr);
}

TEST(StackMeanHeight, SumsInDoubleAndNarrowsOnce) {
    const Owned<Stack> stack = test_stack(200, 200, 0.5F);
    // 40000 times 0.1 summed in f32 drifts to 4000.67; in double the mean is the f32 0.1 again.
    test_surface(stack.get(), 0.1F, 0);
    EXPECT_EQ(stack_mean_height(stack.get()), 0.1F);
    // One point of 1 among 40000 of 0: 1 / 40000.
    test_surface(stack.get(), 0.0F, 0);
    stack->cells[777].height = 1.0F;
    EXPECT_EQ(stack_mean_height(stack.get()), static_cast<f32>(1.0 / 40000.0));
}

TEST(FilmCoat, LevelsTowardTheMeanInF32Steps) {
    const Owned<Stack> stack = test_stack(4, 2, 0.5F);
    for (i32 i = 0; i < 8; ++i) {
        stack->cells[i].height = 0.1F * static_cast<f32>(i);
    }
    f64 sum = 0.0;
    for (i32 i = 0; i < 8; ++i) {
        sum += static_cast<f64>(0.1F * static_cast<f32>(i));
    }
    const f32 mean = static_cast<f32>(sum / 8.0);
    const OwnedStep step = test_step(STEP_COATING);
    step->step.thickness = 0.17F;
    for (const f32 dop : {0.0F, 0.3F, 0.7F, 1.0F}) {
        step->step.dop = dop;
        const Owned<Layer> layer(film_create(stack.get(), &step->step, "SOG"));
        EXPECT_EQ(film_coat(stack.get(), &step->step, layer.get()), mean);
        for (i32 i = 0; i < 8; ++i) {
            const f32 height = 0.1F * static_cast<f32>(i);
            const f32 difference = mean - height;
            const f32 share = difference * dop;
            const f32 level = share + height;
            const f32 top = level + 0.17F;
            EXPECT_EQ(layer->bottom[i], height);
            EXPECT_EQ(layer->top[i], top > height ? top : height) << "dop " << dop << " point " << i;
            EXPECT_GE(layer->top[i], layer->bottom[i]);
        }
    }
}

TEST(FilmCoat, ANanThicknessLeavesNoFilm) {
    const Owned<Stack> stack = test_stack(4, 2, 0.5F);
    test_surface(stack.get(), 0.25F, 0);
    const OwnedStep step = test_step(STEP_COATING);
    step->step.thickness = std::nanf("");
    const Owned<Layer> layer(film_create(stack.get(), &step->step, "SOG"));
    film_coat(stack.get(), &step->step, layer.get());
    EXPECT_TRUE(layer_is_empty(layer.get()));
}

TEST(LayerSmoothDisc, RadiusZeroChangesNothingButTheIndexOfTheSurface) {
    const Owned<Stack> stack = test_stack(6, 4, 0.5F);
    test_surface(stack.get(), 9.0F, 77);
    Layer *layer = test_layer(stack.get(), "OX", 0.0F, 0.0F);
    for (i32 i = 0; i < 24; ++i) {
        layer->top[i] = 0.1F * static_cast<f32>(i % 7);
    }
    layer_smooth_disc(stack.get(), 0.0F);
    for (i32 i = 0; i < 24; ++i) {
        const f32 top = 0.1F * static_cast<f32>(i % 7);
        EXPECT_EQ(layer->top[i], top);
        EXPECT_EQ(stack->cells[i].height, top > 0.0F ? top : 9.0F) << "absent points keep their surface";
        EXPECT_EQ(stack->cells[i].top_layer, top > 0.0F ? 1 : 77) << "one more than the layer's slot";
    }
}

TEST(LayerSmoothDisc, OnlyTheFirstColumnIsNeverLowered) {
    const Owned<Stack> stack = test_stack(5, 3, 0.5F);
    Layer *layer = test_layer(stack.get(), "OX", 0.0F, 2.0F);
    for (i32 m = 0; m < 3; ++m) {
        layer->top[test_point(stack.get(), 0, m)] = 3.0F;
        layer->top[test_point(stack.get(), 4, m)] = 3.0F;
    }
    // A disc of 3 x 3 points (the corners at 0.7071). Every row alike, so means are those of a row:
    // (3 + 2) / 2 at the edges, (3 + 2 + 2) / 3 beside them, 2 in the middle.
    layer_smooth_disc(stack.get(), 0.75F);
    const f32 expected[5] = {3.0F, static_cast<f32>(7.0 / 3.0), 2.0F, static_cast<f32>(7.0 / 3.0), 2.5F};
    for (i32 m = 0; m < 3; ++m) {
        for (i32 n = 0; n < 5; ++n) {
            EXPECT_EQ(layer->top[test_point(stack.get(), n, m)], expected[n]) << n << ", " << m;
        }
    }
}

TEST(LayerSmoothDisc, WhereTheMeanFallsToTheBottomTheLayerIsAbsent) {
    const Owned<Stack> stack = test_stack(5, 1, 0.5F);
    test_surface(stack.get(), 4.0F, 5);
    Layer *layer = test_layer(stack.get(), "OX", 0.0F, 1.0F);
    // A bump of 3 with a film of 1 at column 2: the mean (1 + 4 + 1) / 3 = 2 is below the bottom of 3.
    layer->bottom[2] = 3.0F;
    layer->top[2] = 4.0F;
    layer_smooth_disc(stack.get(), 0.5F);
    EXPECT_EQ(layer->top[2], 3.0F);
    EXPECT_EQ(stack->cells[2].height, 4.0F);
    EXPECT_EQ(stack->cells[2].top_layer, 5);
    EXPECT_EQ(layer->top[1], 2.0F) << "(1 + 1 + 4) / 3";
    EXPECT_EQ(stack->cells[1].top_layer, 1);
}

TEST(LayerSmoothDisc, AnEmptyDiscLeavesNoFilm) {
    for (const f32 radius : {-1.0F, std::nanf("")}) {
        const Owned<Stack> stack = test_stack(5, 2, 0.5F);
        test_surface(stack.get(), 4.0F, 5);
        Layer *layer = test_layer(stack.get(), "OX", 0.0F, 1.0F);
        layer_smooth_disc(stack.get(), radius);
        EXPECT_TRUE(layer_is_empty(layer));
        EXPECT_EQ(stack->cells[3].top_layer, 5);
    }
}
