// How far resist comes down depends on the distance of the nearest opening as the neighbour table
// has it. The exact squared distance in grid points tells where in the table that opening cannot be
// yet; the walk begins there instead of at the point itself. Entries before that place are nearer than
// every opening, so they would be passed over, and what the walk meets first stays the same.
#include "sim/kernels/taper.h"
#include <cassert>
#include <cmath>
#include "platform/owned.h"
#include "platform/trigonometry.h"
#include "sim/kernels/distance_transform.h"

static constexpr i32 START_SLOTS = 1 << 14;

// First table entries worth looking at by squared distance; a slot per remainder, the latest wins.
struct WalkStart {
    i64 square;  // -1 while unused
    i32 entry;
};

struct TaperWalk {
    const TaperInput *input;
    f64 tangent;
    i32 mask_n, mask_m;
    bool is_plain;  // walk the table from its start
    Owned<DistanceTransform> distances;
    Owned<i64[]> squares;       // of one row of the mask
    Owned<WalkStart[]> starts;  // START_SLOTS
};

// A lower limit of every table distance of this squared distance or a larger one. A table distance is
// within four roundings of 2^-24 of the true one.
static f64 distance_limit(f32 spacing, i64 square) {
    return static_cast<f64>(spacing) * std::sqrt(static_cast<f64>(square)) * (1.0 - 1e-6);
}

// The first entry of the table that is not nearer than the limit.
static i32 find_start(const TaperInput *input, f64 limit) {
    i32 begin = 0;
    i32 end = input->offset_count;
    while (begin < end) {
        const i32 middle = begin + (end - begin) / 2;
        if (static_cast<f64>(input->offsets[middle].distance) < limit) {
            begin = middle + 1;
        } else {
            end = middle;
        }
    }
    return begin;
}

// Where to begin the walk to an opening at least sqrt(square) away.
static i32 walk_start(TaperWalk *walk, i64 square) {
    WalkStart *slot = walk->starts.get() + square % START_SLOTS;
    if (slot->square != square) {
        slot->square = square;
        slot->entry = find_start(walk->input, distance_limit(walk->input->spacing, square));
    }
    return slot->entry;
}

// The distance to the first opening from `entry` on that is nearer than `reach`, or -1.
static f32 walk_table(const TaperWalk *walk, i64 i, i64 j, i32 entry, f32 reach) {
    const TaperInput *input = walk->input;
    for (; entry < input->offset_count && input->offsets[entry].distance < reach; ++entry) {
        const i64 column = i + input->offsets[entry].dx;
        const i64 row = j + input->offsets[entry].dy;
        const bool inside = column >= 0 && column < walk->mask_n && row >= 0 && row < walk->mask_m;
        if (inside && input->mask[row * walk->mask_n + column] == 0) {
            return input->offsets[entry].distance;
        }
    }
    return -1.0F;
}

// The distance from mask point (i, j) to the nearest opening when it is nearer than `reach`, or -1.
static f32 nearest_opening(TaperWalk *walk, i64 i, i64 j, f32 reach) {
    if (walk->is_plain) {
        return walk_table(walk, i, j, 0, reach);
    }
    const i64 square = walk->squares.get()[i];
    if (square == DISTANCE_NONE) {
        return -1.0F;
    }
    // Also where the reach is no number: nothing is nearer than that.
    if (!(distance_limit(walk->input->spacing, square) < static_cast<f64>(reach))) {
        return -1.0F;
    }
    return walk_table(walk, i, j, walk_start(walk, square), reach);
}

// The height of resist at mask point (i, j) once its wall is sloped.
static f32 tapered_top(TaperWalk *walk, i64 i, i64 j, f32 bottom, f32 top) {
    const f32 mean = walk->input->mean;
    const f32 above = top - mean;
    const f32 reach = static_cast<f32>(static_cast<f64>(above) / walk->tangent);
    const f32 distance = nearest_opening(walk, i, j, reach);
    if (distance < 0.0F) {
        return top;
    }
    const f64 wide_top = static_cast<f64>(top);
    const f64 rise = static_cast<f64>(distance) * walk->tangent;
    const f64 lowered = wide_top - ((wide_top - static_cast<f64>(mean)) - rise);
    return lowered > static_cast<f64>(bottom) ? static_cast<f32>(lowered) : bottom;
}

static TaperWalk walk_create(const TaperInput *input) {
    TaperWalk walk = {};
    walk.input = input;
    walk.tangent = exact_tan(static_cast<f64>(input->angle_degrees) * PI / 180.0);
    walk.mask_n = input->grid_n + 2 * input->padding;
    walk.mask_m = input->grid_m + 2 * input->padding;
    // The lower limit holds as long as no square of a distance leaves the range of normal numbers.
    walk.is_plain = !(input->spacing >= 1e-12F && input->spacing <= 1e12F);
    if (!walk.is_plain) {
        walk.distances =
            Owned<DistanceTransform>(distance_transform_create(input->mask, walk.mask_n, walk.mask_m));
        walk.squares = memory_scratch<i64>(walk.mask_n);
        walk.starts = memory_scratch<WalkStart>(START_SLOTS);
        for (i32 slot = 0; slot < START_SLOTS; ++slot) {
            walk.starts.get()[slot] = {-1, 0};
        }
    }
    return walk;
}

void taper_apply(const TaperInput *input, const f32 *bottom, f32 *top, GridCell *cells, i32 top_layer) {
    assert(input != nullptr && input->mask != nullptr && input->padding >= 0);
    assert(bottom != nullptr && top != nullptr && bottom != top && cells != nullptr);
    assert(offsets_are_sorted(input->offsets, input->offset_count));
    TaperWalk walk = walk_create(input);
    for (i32 m = 0; m < input->grid_m; ++m) {
        const i64 j = static_cast<i64>(m) + input->padding;
        if (!walk.is_plain) {
            distance_transform_row(walk.distances.get(), static_cast<i32>(j), walk.squares.get());
        }
        for (i32 n = 0; n < input->grid_n; ++n) {
            const i64 i = static_cast<i64>(n) + input->padding;
            const i64 index = static_cast<i64>(m) * input->grid_n + n;
            if (input->mask[j * walk.mask_n + i] == 0 || bottom[index] >= top[index]) {
                top[index] = bottom[index];
                continue;
            }
            top[index] = tapered_top(&walk, i, j, bottom[index], top[index]);
            cells[index] = {top[index], top_layer};
        }
    }
}
