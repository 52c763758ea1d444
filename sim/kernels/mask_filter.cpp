// All counts are exact integers, so the changes from column to column are counted for a whole row at
// once and added up afterwards.
#include "sim/kernels/mask_filter.h"
#include <cassert>
#include "sim/kernels/disc_count.h"
#include "sim/kernels/lanes.h"
#include "sim/kernels/padded_grid.h"

static constexpr i32 BLOCK_COLUMNS = 16;
static constexpr i32 BYTE_STEPS = 127;  // changes of at most 1 that an i8 can add up

// The points that leave and enter when the window of one row moves to column n, at left and entered
// plus n.
struct MaskTap {
    const i8 *left, *entered;
};

struct FilterRun {
    i32 mask_n, mask_m;
    PaddedGrid<i8> input;  // 1 where the mask is set, 0 elsewhere and outside
    Owned<DiscShape> shape;
    const Disc *disc;
    Owned<i32[]> row_sums;  // per row the set points of columns 0..c - 1, at [row * row_stride + c]
    i64 row_stride;
};

static PaddedGrid<i8> pad_mask(const u8 *input, i32 mask_n, i32 mask_m, i32 pad) {
    PaddedGrid<i8> padded = padded_grid_create<i8>(mask_n, mask_m, pad, 0);
    for (i64 m = 0; m < mask_m; ++m) {
        i8 *row = padded_grid_row(&padded, m);
        for (i64 n = 0; n < mask_n; ++n) {
            row[n] = input[m * mask_n + n] != 0 ? 1 : 0;
        }
    }
    return padded;
}

// changes[n] = the points that enter less those that leave when the window moves to column n; the
// array holds whole blocks.
static void count_changes(const MaskTap *taps, i32 count, i32 *changes, i32 mask_n) {
    for (i64 n = 0; n < mask_n; n += BLOCK_COLUMNS) {
        std::memset(changes + n, 0, BLOCK_COLUMNS * sizeof(i32));
        for (i32 first = 0; first < count; first += BYTE_STEPS) {
            const i32 end = count - first < BYTE_STEPS ? count : first + BYTE_STEPS;
            I8x16 block = {};
            for (i32 i = first; i < end; ++i) {
                block += lanes_load<I8x16>(taps[i].entered + n) - lanes_load<I8x16>(taps[i].left + n);
            }
            i8 bytes[BLOCK_COLUMNS];
            lanes_store(bytes, block);
            for (i32 lane = 0; lane < BLOCK_COLUMNS; ++lane) {
                changes[n + lane] += bytes[lane];
            }
        }
    }
}

// The set points of the disc around column 0 of row m.
static i32 count_first(const FilterRun *run, i64 m) {
    i32 set = 0;
    if (!run->shape->is_spans) {
        for (i32 i = 0; i < run->disc->count; ++i) {
            const DiscPoint point = run->disc->points[i];
            const i64 row = m + point.dy;
            if (row >= 0 && row < run->mask_m && point.dx >= 0 && point.dx < run->mask_n) {
                set += padded_grid_row(&run->input, row)[point.dx];
            }
        }
        return set;
    }
    const i64 rows = run->shape->rows;
    const i64 end = m + rows < run->mask_m ? m + rows + 1 : run->mask_m;
    for (i64 row = m < rows ? 0 : m - rows; row < end; ++row) {
        set += run->row_sums.get()[row * run->row_stride + run->shape->half_widths[row - m + rows] + 1];
    }
    return set;
}

// Sums along the rows as far as the disc reaches from column 0.
static void sum_rows(FilterRun *run) {
    run->row_stride = static_cast<i64>(run->shape->columns) + 2;
    run->row_sums = memory_scratch<i32>(run->row_stride * run->mask_m);
    for (i64 m = 0; m < run->mask_m; ++m) {
        const i8 *row = padded_grid_row(&run->input, m);
        i32 *sums = run->row_sums.get() + m * run->row_stride;
        sums[0] = 0;
        for (i64 n = 0; n <= run->shape->columns; ++n) {
            sums[n + 1] = sums[n] + row[n];
        }
    }
}

static void filter_rows(const FilterRun *run, const DiscPoint *edge, i32 edge_count, u8 *output) {
    const i64 columns = static_cast<i64>(run->mask_n) + BLOCK_COLUMNS;
    const Owned<i32[]> owned_changes = memory_scratch<i32>(columns);
    const Owned<i32[]> owned_totals = memory_scratch<i32>(run->mask_n);
    const Owned<MaskTap[]> owned_taps = memory_scratch<MaskTap>(edge_count);
    i32 *changes = owned_changes.get();
    i32 *totals = owned_totals.get();
    MaskTap *taps = owned_taps.get();
    const Owned<DiscCounter> counter(disc_counter_create(run->disc, run->mask_n, run->mask_m));
    for (i64 m = 0; m < run->mask_m; ++m) {
        i32 count = 0;
        for (i32 i = 0; i < edge_count; ++i) {
            const i64 row = m + edge[i].dy;
            if (row >= 0 && row < run->mask_m) {
                const i8 *values = padded_grid_row(&run->input, row);
                taps[count++] = {values + edge[i].dx, values - edge[i].dx - 1};
            }
        }
        count_changes(taps, count, changes, run->mask_n);
        disc_counter_next_row(counter.get(), totals);
        i32 set = count_first(run, m);
        for (i64 n = 0; n < run->mask_n; ++n) {
            set += n > 0 ? changes[n] : 0;
            const f32 half = static_cast<f32>(totals[n]) * 0.5F;
            output[m * run->mask_n + n] = static_cast<f32>(set) > half ? 1 : 0;
        }
    }
}

void mask_apply_resolution(const Disc *disc, const u8 *input, u8 *output, i32 mask_n, i32 mask_m) {
    assert(disc != nullptr && input != nullptr && output != nullptr && input != output);
    if (mask_n <= 0 || mask_m <= 0) {
        return;
    }
    FilterRun run = {};
    run.mask_n = mask_n;
    run.mask_m = mask_m;
    run.disc = disc;
    i32 edge_count = 0;
    const Owned<DiscPoint[]> edge = disc_edge_in_grid(disc, mask_n, mask_m, &edge_count);
    run.input = pad_mask(input, mask_n, mask_m, disc_reach(edge.get(), edge_count).columns);
    run.shape = Owned<DiscShape>(disc_shape_create(disc, mask_n, mask_m));
    if (run.shape->is_spans) {
        sum_rows(&run);
    }
    filter_rows(&run, edge.get(), edge_count, output);
}
