// The sum of a window runs along a row and rounds at every step, so within a row the order of the
// terms is fixed; different rows are independent. Many rows are therefore summed side by side, from
// a transposed copy of the rows that their discs reach, so that one column of them lies together.
// Points outside the grid are zeros in the copy. Adding or subtracting 0.0 leaves every sum as it
// is, except that -0.0 + 0.0 is 0.0; but a sum that starts at 0.0 never becomes -0.0, since only
// -0.0 + -0.0 and -0.0 - 0.0 give it in the rounding to nearest.
#include "sim/kernels/grid_smooth.h"
#include <cassert>
#include "platform/owned.h"
#include "sim/kernels/disc_count.h"
#include "sim/kernels/lanes.h"

static constexpr i32 LANES = 16;
static constexpr i32 GROUPS = 4;  // of lanes that advance together through one transposed copy
static constexpr i32 BLOCK_ROWS = LANES * GROUPS;
static constexpr i32 TILE_ROWS = 8;

// The transposed copy: row r of column n is values[(n + pad) * stride + r - first_row].
struct ColumnBlock {
    f64 *values;
    i64 stride;
    i32 pad;
    i64 first_row;
};

// Where a point of the disc lies in the copy, seen from the window's centre in its first row.
struct EdgeStep {
    i64 leaving, entering;
};

struct SmoothRun {
    const f32 *input;
    f32 *output;
    i32 grid_n, grid_m;
    const DiscPoint *points;  // that can lie in the grid at column 0
    i32 count;
    const DiscPoint *edge;  // that can lie in the grid
    i32 edge_count;
    i32 reach_rows;
    ColumnBlock block;
    EdgeStep *steps;  // room for the points and for the edge
    i32 *row_counts;  // BLOCK_ROWS rows of grid_n
};

// Running sums of sixteen rows.
struct LaneSums {
    F64x2 a, b, c, d, e, f, g, h;
};

static inline void sums_add(LaneSums *sums, const f64 *from) {
    sums->a += lanes_load<F64x2>(from);
    sums->b += lanes_load<F64x2>(from + 2);
    sums->c += lanes_load<F64x2>(from + 4);
    sums->d += lanes_load<F64x2>(from + 6);
    sums->e += lanes_load<F64x2>(from + 8);
    sums->f += lanes_load<F64x2>(from + 10);
    sums->g += lanes_load<F64x2>(from + 12);
    sums->h += lanes_load<F64x2>(from + 14);
}

static inline void sums_subtract(LaneSums *sums, const f64 *from) {
    sums->a -= lanes_load<F64x2>(from);
    sums->b -= lanes_load<F64x2>(from + 2);
    sums->c -= lanes_load<F64x2>(from + 4);
    sums->d -= lanes_load<F64x2>(from + 6);
    sums->e -= lanes_load<F64x2>(from + 8);
    sums->f -= lanes_load<F64x2>(from + 10);
    sums->g -= lanes_load<F64x2>(from + 12);
    sums->h -= lanes_load<F64x2>(from + 14);
}

// Copies TILE_ROWS rows from `row` into the block, zeros for those outside the grid.
static void block_copy_tile(const SmoothRun *run, i64 row) {
    const ColumnBlock *block = &run->block;
    const i64 grid_n = run->grid_n;
    f64 *to = block->values + block->pad * block->stride + row - block->first_row;
    if (row >= 0 && row + TILE_ROWS <= run->grid_m) {
        const f32 *from = run->input + row * grid_n;
        for (i64 n = 0; n < grid_n; ++n) {
            for (i64 r = 0; r < TILE_ROWS; ++r) {
                to[n * block->stride + r] = static_cast<f64>(from[r * grid_n + n]);
            }
        }
        return;
    }
    for (i64 r = 0; r < TILE_ROWS; ++r) {
        const bool inside = row + r >= 0 && row + r < run->grid_m;
        const f32 *from = run->input + (row + r) * (inside ? grid_n : 0);
        for (i64 n = 0; n < grid_n; ++n) {
            to[n * block->stride + r] = inside ? static_cast<f64>(from[n]) : 0.0;
        }
    }
}

// Fills the block with the rows that the discs of BLOCK_ROWS rows from m on reach.
static void block_fill(SmoothRun *run, i64 m) {
    ColumnBlock *block = &run->block;
    // A point outside the grid for every row of the block is dropped, so no others are ever read.
    const i64 lowest = 1 - BLOCK_ROWS;
    const i64 highest = static_cast<i64>(run->grid_m) + BLOCK_ROWS - 1;
    const i64 first = m - run->reach_rows;
    const i64 end = m + BLOCK_ROWS + run->reach_rows;
    block->first_row = first < lowest ? lowest : first;
    const i64 rows = (end > highest ? highest : end) - block->first_row;
    block->stride = (rows + TILE_ROWS - 1) / TILE_ROWS * TILE_ROWS;
    const i64 pad_size = block->pad * block->stride;
    std::memset(block->values, 0, static_cast<size_t>(pad_size) * sizeof(f64));
    std::memset(block->values + pad_size + run->grid_n * block->stride, 0,
                static_cast<size_t>(pad_size) * sizeof(f64));
    for (i64 row = 0; row < block->stride; row += TILE_ROWS) {
        block_copy_tile(run, block->first_row + row);
    }
}

// The steps of a list of points, in its order, without those that lie outside for the whole block.
static i32 find_steps(const SmoothRun *run, const DiscPoint *points, i32 count, i64 m, EdgeStep *steps) {
    const i64 stride = run->block.stride;
    i32 used = 0;
    for (i32 i = 0; i < count; ++i) {
        const i64 dx = points[i].dx;
        const i64 dy = points[i].dy;
        if (m + dy + BLOCK_ROWS > 0 && m + dy < run->grid_m) {
            steps[used++] = {dx * stride + dy, (-dx - 1) * stride + dy};
        }
    }
    return used;
}

// One column of the result. The first column of a row is never lowered, the others have no such
// guard; kept so, since smoothed heights rest on it.
static void write_column(const SmoothRun *run, const f64 *sums, i64 n, i64 m, i64 rows) {
    for (i64 row = 0; row < rows; ++row) {
        const i64 index = (m + row) * run->grid_n + n;
        const f64 count = static_cast<f64>(run->row_counts[row * run->grid_n + n]);
        f32 mean = static_cast<f32>(sums[row] / count);
        const f32 above = mean - run->input[index];
        if (n == 0 && static_cast<f64>(above) < 0.0001) {
            mean = run->input[index];
        }
        run->output[index] = mean;
    }
}

// The first sums of a group of lanes: the disc's points in their order.
static void sum_disc(const SmoothRun *run, i32 step_count, const f64 *centre, LaneSums *sums) {
    LaneSums first = {};
    for (i32 i = 0; i < step_count; ++i) {
        sums_add(&first, centre + run->steps[i].leaving);
    }
    *sums = first;
}

// Moves the window of a group of lanes to the column of `centre`: of each edge point first what leaves.
static void sum_edge(const SmoothRun *run, i32 step_count, const f64 *centre, LaneSums *sums) {
    LaneSums moved = *sums;
    for (i32 i = 0; i < step_count; ++i) {
        sums_subtract(&moved, centre + run->steps[i].leaving);
        sums_add(&moved, centre + run->steps[i].entering);
    }
    *sums = moved;
}

// Sums BLOCK_ROWS rows from m on, as far as the grid has them, from left to right.
static void smooth_block(const SmoothRun *run, i64 m) {
    const ColumnBlock *block = &run->block;
    const i64 rows = run->grid_m - m < BLOCK_ROWS ? run->grid_m - m : BLOCK_ROWS;
    const i64 groups = (rows + LANES - 1) / LANES;
    const f64 *centre = block->values + block->pad * block->stride + m - block->first_row;
    LaneSums sums[GROUPS];
    f64 column[BLOCK_ROWS];
    i32 step_count = find_steps(run, run->points, run->count, m, run->steps);
    for (i64 group = 0; group < groups; ++group) {
        sum_disc(run, step_count, centre + group * LANES, &sums[group]);
    }
    step_count = find_steps(run, run->edge, run->edge_count, m, run->steps);
    for (i64 n = 0; n < run->grid_n; ++n) {
        for (i64 group = 0; group < groups && n > 0; ++group) {
            sum_edge(run, step_count, centre + group * LANES, &sums[group]);
        }
        std::memcpy(column, sums, static_cast<size_t>(groups) * sizeof(LaneSums));
        write_column(run, column, n, m, rows);
        centre += block->stride;
    }
}

static void smooth_rows(SmoothRun *run, DiscCounter *counter) {
    for (i64 m = 0; m < run->grid_m; m += BLOCK_ROWS) {
        block_fill(run, m);
        for (i64 row = 0; row < BLOCK_ROWS && m + row < run->grid_m; ++row) {
            disc_counter_next_row(counter, run->row_counts + row * run->grid_n);
        }
        smooth_block(run, m);
    }
}

// The points of the disc that can lie in the grid at column 0, in order.
static Owned<DiscPoint[]> points_at_first_column(const Disc *disc, i32 grid_n, i32 grid_m, i32 *count) {
    Owned<DiscPoint[]> kept = memory_scratch<DiscPoint>(disc->count);
    *count = 0;
    for (i32 i = 0; i < disc->count; ++i) {
        const DiscPoint point = disc->points[i];
        if (point.dx >= 0 && point.dx < grid_n && point.dy > -grid_m && point.dy < grid_m) {
            kept.get()[(*count)++] = point;
        }
    }
    return kept;
}

// Number of values of the transposed copy, with its reach and padding.
static i64 block_size(const SmoothRun *run) {
    const i64 tallest_reach = BLOCK_ROWS + 2 * static_cast<i64>(run->reach_rows);
    const i64 tallest_grid = static_cast<i64>(run->grid_m) + static_cast<i64>(2) * (BLOCK_ROWS - 1);
    const i64 rows = (tallest_reach < tallest_grid ? tallest_reach : tallest_grid) + TILE_ROWS;
    return (run->grid_n + 2 * static_cast<i64>(run->block.pad)) * rows;
}

void grid_smooth_disc(const Disc *disc, GridView input, f32 *output) {
    assert(disc != nullptr && input.values != nullptr && output != nullptr && input.values != output);
    if (input.n <= 0 || input.m <= 0) {
        return;
    }
    SmoothRun run = {};
    run.input = input.values;
    run.output = output;
    run.grid_n = input.n;
    run.grid_m = input.m;
    const Owned<DiscPoint[]> points = points_at_first_column(disc, input.n, input.m, &run.count);
    const Owned<DiscPoint[]> edge = disc_edge_in_grid(disc, input.n, input.m, &run.edge_count);
    run.points = points.get();
    run.edge = edge.get();
    const DiscReach reach = disc_reach(points.get(), run.count);
    const DiscReach edge_reach = disc_reach(edge.get(), run.edge_count);
    run.reach_rows = reach.rows > edge_reach.rows ? reach.rows : edge_reach.rows;
    run.block.pad = edge_reach.columns;
    const Owned<f64[]> values = memory_scratch<f64>(block_size(&run));
    run.block.values = values.get();
    const i32 most = run.count > run.edge_count ? run.count : run.edge_count;
    const Owned<EdgeStep[]> steps = memory_scratch<EdgeStep>(most);
    run.steps = steps.get();
    const Owned<i32[]> row_counts = memory_scratch<i32>(static_cast<i64>(BLOCK_ROWS) * input.n);
    run.row_counts = row_counts.get();
    const Owned<DiscCounter> counter(disc_counter_create(disc, input.n, input.m));
    smooth_rows(&run, counter.get());
}
