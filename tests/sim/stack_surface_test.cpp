#include "sim/stack_surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "platform/memory.h"
#include "sim/stack_layers.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

TEST(StackAppendLayer, GrowsTheSlotsByDoubling) {
    const Owned<Stack> stack = test_stack(2, 2, 1.0F);
    for (i32 i = 0; i < 513; ++i) {
        test_layer(stack.get(), "OX", 0.0F, 1.0F);
        ASSERT_EQ(stack->layer_count, i + 1);
        ASSERT_EQ(stack->layer_capacity, i < 512 ? 512 : 1024);
    }
    EXPECT_STREQ(stack->layers[512]->material_name, "OX");
}

TEST(StackUpdateSurface, TheTopmostPresentLayerFormsTheSurface) {
    const Owned<Stack> stack = test_stack(5, 4, 1.0F);
    test_layer(stack.get(), "A", 0.0F, 1.0F);
    test_layer(stack.get(), "B", 1.0F, 3.0F);
    test_layer(stack.get(), "C", 3.0F, 3.0F);
    stack_update_surface(stack.get());
    for (i32 i = 0; i < 20; ++i) {
        EXPECT_EQ(stack->cells[i].height, 3.0F);
        EXPECT_EQ(stack->cells[i].top_layer, 1);
    }
}

TEST(StackUpdateSurface, ALayerAtANeighborFormsTheSurfaceWithItsOwnTop) {
    const Owned<Stack> stack = test_stack(7, 5, 1.0F);
    test_layer(stack.get(), "A", 0.0F, 1.0F);
    Layer *wall = test_layer(stack.get(), "B", 1.0F, 1.0F);
    wall->top[test_point(stack.get(), 3, 2)] = 4.0F;
    stack_update_surface(stack.get());
    for (i32 m = 0; m < 5; ++m) {
        for (i32 n = 0; n < 7; ++n) {
            const bool near_wall = std::abs(n - 3) <= 1 && std::abs(m - 2) <= 1;
            const GridCell *cell = &stack->cells[test_point(stack.get(), n, m)];
            EXPECT_EQ(cell->top_layer, near_wall ? 1 : 0) << n << ", " << m;
            EXPECT_EQ(cell->height, n == 3 && m == 2 ? 4.0F : 1.0F) << n << ", " << m;
        }
    }
}

TEST(StackUpdateSurface, NeighborsDoNotWrapAroundTheEdges) {
    const Owned<Stack> stack = test_stack(4, 3, 1.0F);
    test_layer(stack.get(), "A", 0.0F, 1.0F);
    Layer *corner = test_layer(stack.get(), "B", 1.0F, 1.0F);
    corner->top[test_point(stack.get(), 3, 0)] = 2.0F;
    stack_update_surface(stack.get());
    EXPECT_EQ(stack->cells[test_point(stack.get(), 0, 1)].top_layer, 0);
    EXPECT_EQ(stack->cells[test_point(stack.get(), 0, 0)].top_layer, 0);
    EXPECT_EQ(stack->cells[test_point(stack.get(), 2, 1)].top_layer, 1);
    EXPECT_EQ(stack->cells[test_point(stack.get(), 3, 1)].top_layer, 1);
    EXPECT_EQ(stack->cells[test_point(stack.get(), 3, 2)].top_layer, 0);
}

TEST(StackUpdateSurface, WithoutAnyMaterialAroundTheCellKeepsItsSurface) {
    const Owned<Stack> stack = test_stack(6, 3, 1.0F);
    test_surface(stack.get(), 0.75F, 42);
    Layer *layer = test_layer(stack.get(), "A", 0.5F, 0.5F);
    layer->top[test_point(stack.get(), 0, 1)] = 0.6F;
    stack_update_surface(stack.get());
    for (i32 m = 0; m < 3; ++m) {
        for (i32 n = 0; n < 6; ++n) {
            const GridCell *cell = &stack->cells[test_point(stack.get(), n, m)];
            EXPECT_EQ(cell->top_layer, n <= 1 ? 0 : 42) << n << ", " << m;
        }
    }
    EXPECT_EQ(stack->cells[5].height, 0.75F);
}

TEST(StackUpdateSurface, ANanThicknessCountsAsPresent) {
    const Owned<Stack> stack = test_stack(3, 3, 1.0F);
    test_layer(stack.get(), "A", 0.0F, 1.0F);
    Layer *layer = test_layer(stack.get(), "B", 1.0F, 1.0F);
    layer->top[0] = std::nanf("");
    stack_update_surface(stack.get());
    EXPECT_EQ(stack->cells[test_point(stack.get(), 1, 1)].top_layer, 1);
    EXPECT_EQ(stack->cells[test_point(stack.get(), 2, 2)].top_layer, 0);
    EXPECT_TRUE(std::isnan(stack->cells[0].height));
}

TEST(StackUpdateSurface, AnEmptyStackKeepsItsSurface) {
    const Owned<Stack> stack = test_stack(3, 2, 1.0F);
    test_surface(stack.get(), 2.0F, 9);
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
    TestRandom random = test_random_start(20240501);
    for (i32 round = 0; round < 60; ++round) {
        const i32 grid_n = test_random_i32(&random, 1, 19);
        const i32 grid_m = test_random_i32(&random, 1, 13);
        const Owned<Stack> stack = test_stack(grid_n, grid_m, 0.5F);
        const i32 layer_count = test_random_i32(&random, 0, 5);
        for (i32 slot = 0; slot < layer_count; ++slot) {
            Layer *layer = test_layer(stack.get(), "OX", static_cast<f32>(slot), static_cast<f32>(slot));
            for (i32 i = 0; i < grid_n * grid_m; ++i) {
                if (test_random_i32(&random, 0, 11) == 0) {
                    const i32 height = test_random_i32(&random, 0, 8);
                    layer->top[i] = height > 6 ? std::nanf("") : static_cast<f32>(height);
                }
            }
        }
        if (layer_count > 2) {
            test_layer_remove(stack.get(), 1);
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
            ASSERT_EQ(test_f32_bits(stack->cells[i].height), test_f32_bits(want->height))
                << "round " << round << " point " << i;
        }
    }
}
