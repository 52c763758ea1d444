#include "sim/layer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>

#include "platform/memory.h"

static void layer_fill(Layer *layer, f32 bottom, f32 top) {
    for (u32 i = 0; i < layer->grid_n * layer->grid_m; ++i) {
        layer->bottom[i] = bottom;
        layer->top[i] = top;
    }
}

TEST(LayerCreate, IsStaleAndUnnamedWithoutContextObjects) {
    const Owned<Layer> layer(layer_create(5, 3, 0.25F));
    EXPECT_EQ(layer->changed, 1);
    EXPECT_EQ(layer->grid_n, 5U);
    EXPECT_EQ(layer->grid_m, 3U);
    EXPECT_EQ(layer->spacing, 0.25F);
    EXPECT_EQ(layer->material_name, nullptr);
    EXPECT_EQ(layer->legend_name, nullptr);
    EXPECT_EQ(layer->index_count, 0);
    EXPECT_EQ(layer->vbo, 0U);
    EXPECT_EQ(layer->ebo, 0U);
    EXPECT_EQ(layer->vao, 0U);
}

TEST(LayerFree, ReturnsEveryBlockAndTakesNull) {
    const i64 before = memory_live_blocks();
    Owned<Layer> layer(layer_create(4, 4, 1.0F));
    layer->material_name = memory_new_zeroed<char>(4);
    layer->legend_name = memory_new_zeroed<char>(4);
    EXPECT_GT(memory_live_blocks(), before);
    layer.reset();
    layer_free(nullptr);
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(LayerIsEmpty, OnlyWhenTheThicknessIsExactlyZeroEverywhere) {
    const Owned<Layer> layer(layer_create(4, 3, 1.0F));
    layer_fill(layer.get(), 1.5F, 1.5F);
    EXPECT_TRUE(layer_is_empty(layer.get()));
    for (const f32 top : {std::nextafter(1.5F, 2.0F), std::nextafter(1.5F, 1.0F), std::nanf("")}) {
        layer_fill(layer.get(), 1.5F, 1.5F);
        layer->top[11] = top;
        EXPECT_FALSE(layer_is_empty(layer.get())) << "top " << top;
    }
}
