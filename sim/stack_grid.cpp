#include "sim/stack_grid.h"

#include <cassert>
#include <cmath>

#include "log/log.h"
#include "platform/memory.h"
#include "sim/kernels/disc.h"
#include "sim/kernels/offsets_sorted.h"
#include "sim/layer_gl.h"
#include "sim/stack_setup.h"

static constexpr i32 LAYER_CAPACITY = 512;

// Entries of the neighbour table of the grid with its margin; f64, since the counts of an unusual
// section pass every integer.
static f64 neighbor_count(const Stack *stack) {
    const f64 columns = static_cast<f64>(stack->grid_n) + 2.0 * stack->margin_cells;
    const f64 rows = static_cast<f64>(stack->grid_m) + 2.0 * stack->margin_cells;
    return (2.0 * columns - 1.0) * (2.0 * rows - 1.0);
}

bool stack_grid_lay(Stack *stack) {
    assert(stack != nullptr && stack->grid_n > 1);
    const f32 spacing = stack->width / static_cast<f32>(stack->grid_n);
    const f64 rows = std::ceil(static_cast<f64>(stack->depth) / static_cast<f64>(spacing));
    const i32 grid_m = truncate_i32(rows);
    const f32 depth = static_cast<f32>(grid_m) * spacing;
    if (!std::isfinite(spacing) || !(spacing > 0.0F) || grid_m < 1 || !std::isfinite(depth)) {
        console_printf("ERROR: A cross section of %g um x %g um can not be divided into a grid\r\n\r\n",
                       static_cast<f64>(stack->width), static_cast<f64>(stack->depth));
        return false;
    }
    const f32 margin = stack->max_bias > stack->max_resolution ? stack->max_bias : stack->max_resolution;
    const f32 margin_points = std::ceil(margin / spacing);
    stack->spacing = spacing;
    stack->grid_m = grid_m;
    stack->depth = depth;
    stack->margin_cells = truncate_i32(static_cast<f64>(margin_points));
    if (stack->margin_cells < 0 || neighbor_count(stack) > GRID_NEIGHBOR_LIMIT) {
        console_printf("ERROR: A grid of %d x %d points with a margin of %.0f points is too large\r\n\r\n",
                       stack->grid_n, stack->grid_m, static_cast<f64>(margin_points));
        return false;
    }
    return true;
}

static void lines_create(Stack *stack) {
    const f32 points = static_cast<f32>(SURFACE_LINES * static_cast<i64>(stack->grid_m) - SURFACE_LINES) /
                       (static_cast<f32>(stack->grid_n) - 1.0F);
    stack->line_points = truncate_i32(static_cast<f64>(points));
    stack->line_vertex_capacity = static_cast<i64>(stack->line_points) * SURFACE_LINES;
    stack->line_vertices = memory_new_zeroed<LineVertex>(stack->line_vertex_capacity);
    stack->line_step = static_cast<f32>(stack->grid_n - 1) / static_cast<f32>(SURFACE_LINES - 1);
    lines_gl_create(stack);
}

void stack_grid_tables(Stack *stack) {
    assert(stack->grid_n > 1 && stack->grid_m > 0 && stack->margin_cells >= 0);
    const i32 margin = 2 * stack->margin_cells;
    stack->offsets = offsets_create_sorted(stack->grid_n + margin, stack->grid_m + margin, stack->spacing,
                                           &stack->offset_count)
                         .release();
    stack->offset_used = 0;
    stack->cells = memory_new_zeroed<GridCell>(stack_point_count(stack));
    lines_create(stack);
    stack->layers = memory_new_zeroed<Layer *>(LAYER_CAPACITY);
    stack->layer_count = 0;
    stack->layer_capacity = LAYER_CAPACITY;
}
