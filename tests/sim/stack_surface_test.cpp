#include "sim/stack_surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "platform/memory.h"
#include "scene.h"
#include "sim/stack_layers.h"

TEST(StackAppendLayer, GrowsTheSlotsByDoubling) {
    StackPointer stack = scene_stack(2, 2, 1.0F);
    for (i32 i = 0; i < 513; ++i) {
        scene_layer(stack.get(), "OX", 0.0F, 1.0F);
        ASSERT_EQ(stack->layer_count, i + 1);
        ASSERT_EQ(stack->layer_capacity, i < 512 ? 512 : 1024);
    }
    EXPECT_STREQ(stack->layers[512]->material_name, "OX");
}

TEST(StackUpdateSurface, TheTopmostPresentLayerFormsTheSurface) {
    StackPointer stack = scene_stack(5, 4, 1.0F);
    scene_layer(stack.get(), "A", 0.0F, 1.0F);
    scene_layer(stack.get(), "B", 1.0F, 3.0F);
    scene_layer(stack.get(), "C", 3.0F, 3.0F);
    stack_update_surface(stack.get());
    for (i32 i = 0; i < 20; ++i) {
        EXPECT_EQ(stack->cells[i].height, 3.0F);
        EXPECT_EQ(stack->cells[i].top_layer, 1);
    }
}

TEST(StackUpdateSurface, ALayerAtANeighborFormsTheSurfaceWithItsOwnTop) {
    StackPointer stack = scene_stack(7, 5, 1.0F);
    scene_layer(stack.get(), "A", 0.0F, 1.0F);
    Layer *wall = scene_layer(stack.get(), "B", 1.0F, 1.0F);
    wall->top[scene_at(stack.get(), 3, 2)] = 4.0F;
    stack_update_surface(stack.get());
    for (i32 m = 0; m < 5; ++m) {
        for (i32 n = 0; n < 7; ++n) {
            const bool near_wall = std::abs(n - 3) <= 1 && std::abs(m - 2) <= 1;
            const GridCell *cell = &stack->cells[scene_at(stack.get(), n, m)];
            EXPECT_EQ(cell->top_layer, near_wall ? 1 : 0) << n << ", " << m;
            EXPECT_EQ(cell->height, n == 3 && m == 2 ? 4.0F : 1.0F) << n << ", " << m;
        }
    }
}

TEST(StackUpdateSurface, NeighborsDoNotWrapAroundTheEdges) {
    StackPointer stack = scene_stack(4, 3, 1.0F);
    scene_layer(stack.get(), "A", 0.0F, 1.0F);
    Layer *corner = scene_layer(stack.get(), "B", 1.0F, 1.0F);
    corner->top[scene_at(stack.get(), 3, 0)] = 2.0F;
    stack_update_surface(stack.get());
    EXPECT_EQ(stack->cells[scene_at(stack.get(), 0, 1)].top_layer, 0);
    EXPECT_EQ(stack->cells[scene_at(stack.get(), 0, 0)].top_layer, 0);
    EXPECT_EQ(stack->cells[scene_at(stack.get(), 2, 1)].top_layer, 1);
    EXPECT_EQ(stack->cells[scene_at(stack.get(), 3, 1)].top_layer, 1);
    EXPECT_EQ(stack->cells[scene_at(stack.get(), 3, 2)].top_layer, 0);
}

TEST(StackUpdateSurface, WithoutAnyMaterialAroundTheCellKeepsItsSurface) {
    StackPointer stack = scene_stack(6, 3, 1.0F);
    scene_surface(stack.get(), 0.75F, 42);
    Layer *layer = scene_layer(stack.get(), "A", 0.5F, 0.5F);
    layer->top[scene_at(stack.get(), 0, 1)] = 0.6F;
    stack_update_surface(stack.get());
    for (i32 m = 0; m < 3; ++m) {
        for (i32 n = 0; n < 6; ++n) {
            const GridCell *cell = &stack->cells[scene_at(stack.get(), n, m)];
            EXPECT_EQ(cell->top_layer, n <= 1 ? 0 : 42) << n << ", " << m;
        }
    }
    EXPECT_EQ(stack->cells[5].height, 0.75F);
}

TEST(StackUpdateSurface, ANanThicknessCountsAsPresent) {
    StackPointer stack = scene_stack(3, 3, 1.0F);
    scene_layer(stack.get(), "A", 0.0F, 1.0F);
    Layer *layer = scene_layer(stack.get(), "B", 1.0F, 1.0F);
    layer->top[0] = std::nanf("");
    stack_update_surface(stack.get());
    EXPECT_EQ(stack->cells[scene_at(stack.get(), 1, 1)].top_layer, 1);
    EXPECT_EQ(stack->cells[scene_at(stack.get(), 2, 2)].top_layer, 0);
    EXPECT_TRUE(std::isnan(stack->cells[0].height));
}

TEST(StackUpdateSurface, AnEmptyStackKeepsItsSurface) {
    StackPointer stack = scene_stack(3, 2, 1.0F);
    scene_surface(stack.get(), 2.0F, 9);
    stack_update_surface(stack.get());
    EXPECT_EQ(stack->cells[5].height, 2.0F);
    EXPECT_EQ(stack->cells[5].top_layer, 9);
}

// The nine points in their plain order, each with its own test of the bounds.
static void surface_reference(const Stack *stack, std::vector<GridCell> *cells) {
    const i32 around[9][2] = {{0, 0}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}, {1, 0}, {1, 1}};
    for (i32 m = 0; m < stack->grid_m; ++m) {
        for (i32 n = 0; n < stack->grid_n; ++n) {
            bool found = false;
            for (i32 slot = stack->layer_count - 1; slot >= 0 && !found; --slot) {
                const Layer *layer = stack->layers[slot];
                for (i32 k = 0; layer != nullptr && k < 9 && !found; ++k) {
                    const i32 column = n + around[k][0];
                    const i32 row = m + around[k][1];
                    if (column < 0 || row < 0 || column >= stack->grid_n || row >= stack->grid_m) {
                        continue;
                    }
                    const i64 point = static_cast<i64>(row) * stack->grid_n + column;
                    if (layer->top[point] - layer->bottom[point] != 0.0F) {
                        const i64 own = static_cast<i64>(m) * stack->grid_n + n;
                        (*cells)[static_cast<size_t>(own)] = {layer->top[own], slot};
                        found = true;
                    }
                }
            }
        }
    }
}

TEST(StackUpdateSurface, AgreesWithThePlainWalkOnRandomStacks) {
    std::mt19937 random(20240501);
    for (i32 round = 0; round < 60; ++round) {
        const i32 grid_n = 1 + static_cast<i32>(random() % 19);
        const i32 grid_m = 1 + static_cast<i32>(random() % 13);
        StackPointer stack = scene_stack(grid_n, grid_m, 0.5F);
        const i32 layer_count = static_cast<i32>(random() % 6);
        for (i32 slot = 0; slot < layer_count; ++slot) {
            Layer *layer = scene_layer(stack.get(), "OX", static_cast<f32>(slot), static_cast<f32>(slot));
            for (i32 i = 0; i < grid_n * grid_m; ++i) {
                if (random() % 12 == 0) {
                    layer->top[i] = random() % 9 == 0 ? std::nanf("") : static_cast<f32>(random() % 7);
                }
            }
        }
        if (layer_count > 2) {
            layer_free(stack->layers[1]);
            stack->layers[1] = nullptr;
        }
        std::vector<GridCell> expected(static_cast<size_t>(grid_n) * static_cast<size_t>(grid_m));
        for (i32 i = 0; i < grid_n * grid_m; ++i) {
            stack->cells[i] = {static_cast<f32>(i), -i};
            expected[static_cast<size_t>(i)] = stack->cells[i];
        }
        surface_reference(stack.get(), &expected);
        stack_update_surface(stack.get());
        for (i32 i = 0; i < grid_n * grid_m; ++i) {
            const GridCell *want = &expected[static_cast<size_t>(i)];
            ASSERT_EQ(stack->cells[i].top_layer, want->top_layer) << "round " << round << " point " << i;
            ASSERT_EQ(f32_bits(stack->cells[i].height), f32_bits(want->height))
                << "round " << round << " point " << i;
        }
    }
}
