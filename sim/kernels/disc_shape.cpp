#include "sim/kernels/disc_shape.h"
#include <cassert>
#include <cstdlib>
#include "platform/memory.h"

// Row by row the number of points that can matter and the widest of them.
static void shape_measure_rows(const Disc *disc, i32 grid_n, DiscShape *shape, i32 *counts) {
    for (i32 i = 0; i < disc->count; ++i) {
        const i32 dx = std::abs(disc->points[i].dx);
        const i32 row = disc->points[i].dy + shape->rows;
        if (dx >= grid_n || row < 0 || row > 2 * shape->rows) {
            continue;
        }
        ++counts[row];
        if (dx > shape->half_widths[row]) {
            shape->half_widths[row] = dx;
        }
    }
}

// A row of distinct points, none further out than half, is a whole span when it has 2 half + 1.
static bool shape_rows_are_spans(const DiscShape *shape, const i32 *counts) {
    for (i32 row = 0; row <= 2 * shape->rows; ++row) {
        const i32 half = shape->half_widths[row];
        if (half >= 0 && counts[row] != 2 * half + 1) {
            return false;
        }
    }
    return true;
}

// One edge point just left of each span, except of a span that covers every column anyway.
//   counts   scratch, one per row
static bool shape_edge_is_exact(const DiscShape *shape, const DiscPoint *edge, i32 edge_count, i32 grid_n,
                                i32 *counts) {
    for (i32 row = 0; row <= 2 * shape->rows; ++row) {
        const i32 half = shape->half_widths[row];
        counts[row] = half >= 0 && half < grid_n - 1 ? 1 : 0;
    }
    i32 missing = 0;
    for (i32 row = 0; row <= 2 * shape->rows; ++row) {
        missing += counts[row];
    }
    for (i32 i = 0; i < edge_count; ++i) {
        const i32 row = edge[i].dy + shape->rows;
        if (row < 0 || row > 2 * shape->rows || edge[i].dx != -shape->half_widths[row] - 1 ||
            counts[row] == 0) {
            return false;
        }
        counts[row] = 0;
        --missing;
    }
    return missing == 0;
}

// The largest |dy| of the disc's points that can lie in the grid; -1 when there is none.
static i32 shape_reached_rows(const Disc *disc, i32 grid_m) {
    i32 rows = -1;
    for (i32 i = 0; i < disc->count; ++i) {
        const i32 dy = std::abs(disc->points[i].dy);
        if (dy < grid_m && dy > rows) {
            rows = dy;
        }
    }
    return rows;
}

DiscShape *disc_shape_create(const Disc *disc, i32 grid_n, i32 grid_m) {
    assert(disc != nullptr && disc->count >= 0 && grid_n >= 0 && grid_m >= 0);
    auto *shape = memory_new_zeroed<DiscShape>();
    shape->rows = shape_reached_rows(disc, grid_m);
    shape->columns = -1;
    const i64 row_count = shape->rows < 0 ? 0 : 2 * static_cast<i64>(shape->rows) + 1;
    shape->half_widths = memory_new_array<i32>(row_count);
    const Owned<i32[]> counts = memory_scratch_zeroed<i32>(row_count);
    for (i64 row = 0; row < row_count; ++row) {
        shape->half_widths[row] = -1;
    }
    shape_measure_rows(disc, grid_n, shape, counts.get());
    shape->is_spans = shape_rows_are_spans(shape, counts.get());
    for (i64 row = 0; row < row_count; ++row) {
        const i32 half = shape->half_widths[row];
        shape->columns = half > shape->columns ? half : shape->columns;
    }
    i32 edge_count = 0;
    const Owned<DiscPoint[]> edge = disc_edge_in_grid(disc, grid_n, grid_m, &edge_count);
    shape->edge_is_exact =
        shape->is_spans && shape_edge_is_exact(shape, edge.get(), edge_count, grid_n, counts.get());
    return shape;
}

void disc_shape_free(DiscShape *shape) {
    if (shape == nullptr) {
        return;
    }
    memory_free(shape->half_widths);
    memory_free(shape);
}

Owned<DiscPoint[]> disc_edge_in_grid(const Disc *disc, i32 grid_n, i32 grid_m, i32 *count) {
    assert(disc != nullptr && disc->edge_count >= 0 && count != nullptr);
    Owned<DiscPoint[]> kept = memory_scratch<DiscPoint>(disc->edge_count);
    *count = 0;
    for (i32 i = 0; i < disc->edge_count; ++i) {
        const DiscPoint point = disc->edge[i];
        // Column n is 1..N - 1, so both n + dx and n - dx - 1 reach the grid for these dx and no other.
        if (point.dx >= 1 - grid_n && point.dx <= grid_n - 2 && std::abs(point.dy) < grid_m) {
            kept.get()[(*count)++] = point;
        }
    }
    return kept;
}

DiscReach disc_reach(const DiscPoint *points, i32 count) {
    assert(count >= 0 && (points != nullptr || count == 0));
    DiscReach reach = {};
    for (i32 i = 0; i < count; ++i) {
        const i32 columns = std::abs(points[i].dx) + 1;
        const i32 rows = std::abs(points[i].dy);
        reach.columns = columns > reach.columns ? columns : reach.columns;
        reach.rows = rows > reach.rows ? rows : reach.rows;
    }
    return reach;
}
