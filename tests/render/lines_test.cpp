#include "render/lines.h"
#include <gtest/gtest.h>
#include <vector>
#include "sim/stack_setup.h"

// A stack of the parts that the lines need; the height at point (n, m) is 1000 m + n.
struct LineStack {
    std::vector<GridCell> cells;
    std::vector<LineVertex> vertices;
    Stack stack;

    LineStack(i32 grid_n, i32 grid_m, i32 points, f32 step)
        : cells(static_cast<size_t>(grid_n) * static_cast<size_t>(grid_m)),
          vertices(static_cast<size_t>(points) * 10),
          stack() {
        for (i32 i = 0; i < grid_n * grid_m; ++i) {
            const i32 height = 1000 * (i / grid_n) + i % grid_n;
            cells[static_cast<size_t>(i)].height = static_cast<f32>(height);
        }
        stack.cells = cells.data();
        stack.line_vertices = vertices.data();
        stack.grid_n = grid_n;
        stack.grid_m = grid_m;
        stack.line_points = points;
        stack.line_step = step;
        stack.spacing = 0.25F;
    }
};

TEST(StackUpdateLines, TakesEverySecondPointForAStepOfTwo) {
    // N = 19: step 18 / 9 = 2; M = 10: (100 - 10) / 18 = 5 points a line.
    LineStack lines(19, 10, 5, 2.0F);
    stack_update_lines(&lines.stack);
    for (i32 j = 0; j < 5; ++j) {
        for (i32 c = 0; c < 10; ++c) {
            const LineVertex &vertex = lines.vertices[static_cast<size_t>(j) * 10 + static_cast<size_t>(c)];
            EXPECT_EQ(vertex.position[0], static_cast<f32>(2 * c) * 0.25F);
            EXPECT_EQ(vertex.position[1], static_cast<f32>(2 * j) * 0.25F);
            EXPECT_EQ(vertex.position[2], static_cast<f32>(2000 * j + 2 * c));
            EXPECT_EQ(vertex.unused[0], 0.0F);
            EXPECT_EQ(vertex.unused[1], 0.0F);
            EXPECT_EQ(vertex.unused[2], 0.0F);
            EXPECT_EQ(vertex.shade, 0.95F);
        }
    }
}

TEST(StackUpdateLines, TruncatesTheProductOfAnUnevenStep) {
    // N = 11: step 10 / 9 = 1.1111112 in single precision; times 9 it reaches 10.
    LineStack lines(11, 11, 10, 10.0F / 9.0F);
    stack_update_lines(&lines.stack);
    const i32 expected[10] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 10};
    for (i32 i = 0; i < 10; ++i) {
        EXPECT_EQ(lines.vertices[static_cast<size_t>(i)].position[0], static_cast<f32>(expected[i]) * 0.25F)
            << i;
        EXPECT_EQ(static_cast<f32>(expected[i]) * 0.25F,
                  lines.vertices[static_cast<size_t>(i) * 10].position[1])
            << i;
    }
    EXPECT_EQ(lines.vertices[99].position[2], 10010.0F);
}

TEST(StackUpdateLines, StaysInsideTheGrid) {
    // More points and a longer step than the grid has room for.
    LineStack lines(4, 3, 6, 2.0F);
    stack_update_lines(&lines.stack);
    EXPECT_EQ(lines.vertices[59].position[2], 2003.0F);
}

TEST(StackUpdateLines, AGridOfOneRowHasNoPoints) {
    LineStack lines(11, 1, 0, 10.0F / 9.0F);
    stack_update_lines(&lines.stack);
    EXPECT_EQ(lines.vertices.size(), 0U);
}
