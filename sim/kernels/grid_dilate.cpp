// The running extremum of a row is defined by its update from column to column: it is taken anew when
// its value is met among the leaving points, else only the entering points count. As long as the edge
// is exactly what leaves the disc, that is the extremum over the disc. Radii that lie on a distance
// of the table often have an edge that is not; then the update itself is followed, fed with the
// extremum over the disc (for the columns that are taken anew) and with the extrema of the points
// that leave and enter.
#include "sim/kernels/grid_dilate.h"
#include <cassert>
#include "sim/kernels/grid_window.h"

static constexpr i32 BLOCK_COLUMNS = 16;

// A disc and a grid, ready for the update.
struct ExtremumRun {
    const Disc *disc;
    const f32 *input;
    f32 *output;
    i32 grid_n, grid_m;
};

static bool in_grid(const ExtremumRun *run, i64 n, i64 m) {
    return n >= 0 && n < run->grid_n && m >= 0 && m < run->grid_m;
}

static f32 value_at(const ExtremumRun *run, i64 n, i64 m) {
    return run->input[m * run->grid_n + n];
}

template <typename Extremum>
static f32 plain_whole_disc(const ExtremumRun *run, i64 n, i64 m) {
    f32 best = Extremum::START;
    for (i32 i = 0; i < run->disc->count; ++i) {
        const DiscPoint point = run->disc->points[i];
        if (in_grid(run, n + point.dx, m + point.dy)) {
            best = Extremum::take(value_at(run, n + point.dx, m + point.dy), best);
        }
    }
    return best;
}

static bool plain_leaves(const ExtremumRun *run, i64 n, i64 m, f32 best) {
    for (i32 i = 0; i < run->disc->edge_count; ++i) {
        const DiscPoint point = run->disc->edge[i];
        if (in_grid(run, n + point.dx, m + point.dy) && value_at(run, n + point.dx, m + point.dy) == best) {
            return true;
        }
    }
    return false;
}

// The update point by point, right for every disc and input.
template <typename Extremum>
static void plain_extremum(const ExtremumRun *run) {
    for (i64 m = 0; m < run->grid_m; ++m) {
        f32 best = Extremum::START;
        for (i64 n = 0; n < run->grid_n; ++n) {
            if (n == 0 || plain_leaves(run, n, m, best)) {
                best = plain_whole_disc<Extremum>(run, n, m);
            } else {
                for (i32 i = 0; i < run->disc->edge_count; ++i) {
                    const DiscPoint point = run->disc->edge[i];
                    if (in_grid(run, n - point.dx - 1, m + point.dy)) {
                        best = Extremum::take(value_at(run, n - point.dx - 1, m + point.dy), best);
                    }
                }
            }
            run->output[m * run->grid_n + n] = best;
        }
    }
}

// The values that leave and enter when the window of one row moves to column n, at left and entered
// plus n.
struct EdgeTap {
    const f32 *left, *entered;
};

// Extremum over one side of the edge for 16 columns.
template <typename Extremum>
static void edge_block(const EdgeTap *taps, i32 count, const f32 *EdgeTap::*side, i64 column, f32 *out) {
    const f32 neutral = Extremum::NEUTRAL;
    F32x4 a = {neutral, neutral, neutral, neutral};
    F32x4 b = a;
    F32x4 c = a;
    F32x4 d = a;
    for (i32 i = 0; i < count; ++i) {
        const f32 *from = taps[i].*side + column;
        a = Extremum::take(lanes_load<F32x4>(from), a);
        b = Extremum::take(lanes_load<F32x4>(from + 4), b);
        c = Extremum::take(lanes_load<F32x4>(from + 8), c);
        d = Extremum::take(lanes_load<F32x4>(from + 12), d);
    }
    lanes_store(out, a);
    lanes_store(out + 4, b);
    lanes_store(out + 8, c);
    lanes_store(out + 12, d);
}

// Whether `best` is among the values that leave at column n, given the extremum of those values.
template <typename Extremum>
static bool edge_leaves(const EdgeTap *taps, i32 count, i64 n, f32 leaving, f32 best) {
    if (leaving == best) {
        return true;
    }
    bool found = false;
    if (Extremum::is_better(leaving, best)) {
        for (i32 i = 0; i < count && !found; ++i) {
            found = taps[i].left[n] == best;
        }
    }
    return found;
}

// Follows the update along one row. On entry `row` holds the extrema over the disc.
template <typename Extremum>
static void follow_row(const EdgeTap *taps, i32 count, f32 *row, i32 grid_n) {
    f32 leaving[BLOCK_COLUMNS];
    f32 entering[BLOCK_COLUMNS];
    f32 best = row[0];
    for (i64 n = 0; n < grid_n; ++n) {
        const i64 lane = n % BLOCK_COLUMNS;
        if (lane == 0) {
            edge_block<Extremum>(taps, count, &EdgeTap::left, n, leaving);
            edge_block<Extremum>(taps, count, &EdgeTap::entered, n, entering);
        }
        if (n > 0) {
            const bool anew = edge_leaves<Extremum>(taps, count, n, leaving[lane], best);
            best = anew ? row[n] : Extremum::take(entering[lane], best);
        }
        row[n] = best;
    }
}

template <typename Extremum>
static void follow_update(const ExtremumRun *run, const PaddedGrid<f32> *padded, const DiscPoint *edge,
                          i32 edge_count) {
    const Owned<EdgeTap[]> owned_taps = memory_scratch<EdgeTap>(edge_count);
    EdgeTap *taps = owned_taps.get();
    for (i64 m = 0; m < run->grid_m; ++m) {
        i32 count = 0;
        for (i32 i = 0; i < edge_count; ++i) {
            const i64 row = m + edge[i].dy;
            if (row >= 0 && row < run->grid_m) {
                const f32 *values = padded_grid_row(padded, row);
                taps[count++] = {values + edge[i].dx, values - edge[i].dx - 1};
            }
        }
        follow_row<Extremum>(taps, count, run->output + m * run->grid_n, run->grid_n);
    }
}

// The input with nan, which no running extremum takes, replaced by a value that has as little effect.
template <typename Extremum>
static PaddedGrid<f32> pad_input(const ExtremumRun *run, i32 pad) {
    PaddedGrid<f32> padded = padded_grid_create<f32>(run->grid_n, run->grid_m, pad, Extremum::NEUTRAL);
    for (i64 m = 0; m < run->grid_m; ++m) {
        f32 *row = padded_grid_row(&padded, m);
        const f32 *values = run->input + m * run->grid_n;
        for (i64 n = 0; n < run->grid_n; ++n) {
            row[n] = std::isnan(values[n]) ? Extremum::NEUTRAL : values[n];
        }
    }
    return padded;
}

template <typename Extremum>
static void disc_extremum(const ExtremumRun *run) {
    const Owned<DiscShape> shape(disc_shape_create(run->disc, run->grid_n, run->grid_m));
    if (!shape->is_spans) {
        plain_extremum<Extremum>(run);
        return;
    }
    i32 edge_count = 0;
    const Owned<DiscPoint[]> edge = disc_edge_in_grid(run->disc, run->grid_n, run->grid_m, &edge_count);
    const i32 reach = disc_reach(edge.get(), edge_count).columns;
    const i32 pad = reach > shape->columns ? reach : shape->columns;
    const PaddedGrid<f32> padded = pad_input<Extremum>(run, pad < 0 ? 0 : pad);
    grid_window_extremum<Extremum>(shape.get(), &padded, run->output, run->grid_n, run->grid_m);
    if (!shape->edge_is_exact) {
        follow_update<Extremum>(run, &padded, edge.get(), edge_count);
    }
}

// For asserts.
[[maybe_unused]] static bool are_sound(const Disc *disc, GridView input, const f32 *output) {
    return disc != nullptr && input.values != nullptr && output != nullptr && input.values != output &&
           input.n >= 0 && input.m >= 0;
}

void grid_dilate_disc(const Disc *disc, GridView input, f32 *output) {
    assert(are_sound(disc, input, output));
    // A maximum starts at 0.0, so neither -0.0 nor a negative value can ever become one.
    const ExtremumRun run = {disc, input.values, output, input.n, input.m};
    disc_extremum<RunningMaximum>(&run);
}

// Whether the grid has both 0.0 and -0.0: they are equal, so the first one met stays the minimum.
static bool has_both_zeros(const f32 *values, i64 count) {
    bool positive = false;
    bool negative = false;
    for (i64 i = 0; i < count; ++i) {
        if (values[i] == 0.0F) {
            (std::signbit(values[i]) ? negative : positive) = true;
        }
    }
    return positive && negative;
}

void grid_erode_disc(const Disc *disc, GridView input, f32 *output) {
    assert(are_sound(disc, input, output));
    const ExtremumRun run = {disc, input.values, output, input.n, input.m};
    if (has_both_zeros(input.values, grid_point_count(input))) {
        plain_extremum<RunningMinimum>(&run);
    } else {
        disc_extremum<RunningMinimum>(&run);
    }
}
