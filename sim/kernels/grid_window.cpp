// The grid is worked on in strips of columns, from row 0 upward. For each row of a strip the extrema
// over 1, 2, 4, ... neighbouring columns are kept while a disc can reach the row; a span of any
// width is then the better of two of them that overlap.
#include "sim/kernels/grid_window.h"
#include <cassert>
#include "sim/kernels/grid.h"

static constexpr i32 STRIP_COLUMNS = 256;
static constexpr i32 BLOCK_COLUMNS = 16;

// One span of a disc as the two runs of columns that cover it.
struct SpanTaps {
    const f32 *left, *right;
};

// The runs of 2^level columns of the rows in reach, a ring of rows.
struct RunRing {
    f32 *runs;  // [slot][level][column]; row r is in slot r % rows
    i32 rows, levels;
    i64 width;         // columns of the strip, its margins included
    i32 rows_done;     // rows entered so far
    i64 first_column;  // of the strip without its left margin
};

// The largest power of two of columns that fits into a span.
static i32 span_level(i32 half) {
    const u32 width = 2 * static_cast<u32>(half) + 1;
#ifdef __GNUC__
    return 31 - __builtin_clz(width);
#else
    i32 level = 0;
    while ((width >> level) > 1) {
        ++level;
    }
    return level;
#endif
}

static f32 *ring_runs(const RunRing *ring, i32 slot, i32 level) {
    return ring->runs + (static_cast<i64>(slot) * ring->levels + level) * ring->width;
}

template <typename Extremum>
static void ring_enter_row(RunRing *ring, const DiscShape *shape, const PaddedGrid<f32> *input) {
    const i32 row = ring->rows_done++;
    const i32 slot = row % ring->rows;
    const f32 *source = padded_grid_row(input, row) + ring->first_column - shape->columns;
    f32 *runs = ring_runs(ring, slot, 0);
    std::memcpy(runs, source, static_cast<size_t>(ring->width) * sizeof(f32));
    for (i32 level = 1; level < ring->levels; ++level) {
        const f32 *half_runs = ring_runs(ring, slot, level - 1);
        runs = ring_runs(ring, slot, level);
        const i64 shift = static_cast<i64>(1) << (level - 1);
        for (i64 i = 0; i <= ring->width - 2 * shift; ++i) {
            runs[i] = Extremum::take(half_runs[i + shift], half_runs[i]);
        }
    }
}

// The taps of every span that row m of the strip's first column sees; returns their number.
static i32 ring_find_taps(const RunRing *ring, const DiscShape *shape, i32 m, i32 grid_m, SpanTaps *taps) {
    const i32 first = m < shape->rows ? 0 : m - shape->rows;
    const i32 end = grid_m - m <= shape->rows ? grid_m : m + shape->rows + 1;
    i32 count = 0;
    i32 slot = first % ring->rows;
    for (i32 row = first; row < end; ++row) {
        const i32 half = shape->half_widths[row - m + shape->rows];
        if (half >= 0) {
            const i32 level = span_level(half);
            const f32 *runs = ring_runs(ring, slot, level) + shape->columns;
            taps[count++] = {runs - half, runs + half + 1 - (1 << level)};
        }
        slot = slot + 1 < ring->rows ? slot + 1 : 0;
    }
    return count;
}

template <typename Extremum>
static void block_extremum(const SpanTaps *taps, i32 tap_count, i64 column, f32 *out) {
    const f32 start = Extremum::START;
    F32x4 a = {start, start, start, start};
    F32x4 b = a;
    F32x4 c = a;
    F32x4 d = a;
    for (i32 i = 0; i < tap_count; ++i) {
        const f32 *left = taps[i].left + column;
        const f32 *right = taps[i].right + column;
        a = Extremum::take(lanes_load<F32x4>(left), a);
        b = Extremum::take(lanes_load<F32x4>(left + 4), b);
        c = Extremum::take(lanes_load<F32x4>(left + 8), c);
        d = Extremum::take(lanes_load<F32x4>(left + 12), d);
        a = Extremum::take(lanes_load<F32x4>(right), a);
        b = Extremum::take(lanes_load<F32x4>(right + 4), b);
        c = Extremum::take(lanes_load<F32x4>(right + 8), c);
        d = Extremum::take(lanes_load<F32x4>(right + 12), d);
    }
    lanes_store(out, a);
    lanes_store(out + 4, b);
    lanes_store(out + 8, c);
    lanes_store(out + 12, d);
}

template <typename Extremum>
static void strip_extremum(RunRing *ring, const DiscShape *shape, const PaddedGrid<f32> *input, f32 *output,
                           i32 grid_n, i32 grid_m, SpanTaps *taps) {
    const i64 columns_left = grid_n - ring->first_column;
    const i64 columns = columns_left < STRIP_COLUMNS ? columns_left : STRIP_COLUMNS;
    for (i32 m = 0; m < grid_m; ++m) {
        while (ring->rows_done < grid_m && ring->rows_done <= m + shape->rows) {
            ring_enter_row<Extremum>(ring, shape, input);
        }
        const i32 tap_count = ring_find_taps(ring, shape, m, grid_m, taps);
        f32 *out = output + static_cast<i64>(m) * grid_n + ring->first_column;
        for (i64 column = 0; column < columns; column += BLOCK_COLUMNS) {
            f32 block[BLOCK_COLUMNS];
            block_extremum<Extremum>(taps, tap_count, column, block);
            const i64 wanted = columns - column < BLOCK_COLUMNS ? columns - column : BLOCK_COLUMNS;
            std::memcpy(out + column, block, static_cast<size_t>(wanted) * sizeof(f32));
        }
    }
}

template <typename Extremum>
void grid_window_extremum(const DiscShape *shape, const PaddedGrid<f32> *input, f32 *output, i32 grid_n,
                          i32 grid_m) {
    assert(shape->is_spans && input->values.get() != output && input->pad >= shape->columns);
    assert(grid_n >= 0 && grid_m >= 0);
    if (shape->rows < 0) {
        for (i64 i = 0; i < grid_point_count(grid_n, grid_m); ++i) {
            output[i] = Extremum::START;
        }
        return;
    }
    RunRing ring = {};
    const i64 reached = 2 * static_cast<i64>(shape->rows) + 1;
    ring.rows = static_cast<i32>(reached < grid_m ? reached : grid_m);
    ring.levels = span_level(shape->columns) + 1;
    const i64 strip = (grid_n < STRIP_COLUMNS ? grid_n : STRIP_COLUMNS) + BLOCK_COLUMNS - 1;
    const i64 columns = strip / BLOCK_COLUMNS * BLOCK_COLUMNS;
    ring.width = columns + 2 * static_cast<i64>(shape->columns);
    const Owned<f32[]> runs = memory_scratch<f32>(ring.width * ring.levels * ring.rows);
    ring.runs = runs.get();
    const Owned<SpanTaps[]> taps = memory_scratch<SpanTaps>(reached);
    for (i64 column = 0; column < grid_n; column += STRIP_COLUMNS) {
        ring.first_column = column;
        // The last strip is narrower; the copy of a row must end with the padded row.
        const i64 left = grid_n - column + BLOCK_COLUMNS - 1;
        const i64 wanted = left < columns ? left / BLOCK_COLUMNS * BLOCK_COLUMNS : columns;
        ring.width = wanted + 2 * static_cast<i64>(shape->columns);
        ring.rows_done = 0;
        strip_extremum<Extremum>(&ring, shape, input, output, grid_n, grid_m, taps.get());
    }
}

template void grid_window_extremum<RunningMaximum>(const DiscShape *, const PaddedGrid<f32> *, f32 *, i32,
                                                   i32);
template void grid_window_extremum<RunningMinimum>(const DiscShape *, const PaddedGrid<f32> *, f32 *, i32,
                                                   i32);
