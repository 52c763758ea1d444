#include "gds/gds_lattice.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

#include "platform/platform.h"

// All bounds rest on this: adding and multiplying by a constant, rounded, never reverses an order. So
// a coordinate is monotone in the column and in the row, and the ends of a block bound its inside.

struct FloatRange {
    f64 low, high;
};

// A coordinate of the AREF's own origins. Single precision rounds at most five times, each time by no more
// than its unit of all terms together, and what is left is cut off to a whole unit.
static LatticeSum position_sum(f32 first, f32 column, f32 row, const GdsARef *aref) {
    const f64 rounding = 1.0 / (1 << 24);
    LatticeSum sum = {static_cast<f64>(first), static_cast<f64>(column), static_cast<f64>(row), 0.0};
    const f64 size =
        std::fabs(sum.at) + std::fabs(sum.by_column) * aref->cols + std::fabs(sum.by_row) * aref->rows;
    sum.error = size * 5.0 * rounding + 1.0;
    return sum;
}

// x times x_factor plus y times y_factor, in double precision, and cut off once more.
static LatticeSum turned_sum(const LatticeSum *x, f64 x_factor, const LatticeSum *y, f64 y_factor) {
    LatticeSum sum = {x->at * x_factor + y->at * y_factor, x->by_column * x_factor + y->by_column * y_factor,
                      x->by_row * x_factor + y->by_row * y_factor, 0.0};
    // Coordinates are below 2^32 each; of their products double precision keeps far more than this.
    const f64 rounding = 8.0 * 4294967296.0 * 1.0e-12 * (std::fabs(x_factor) + std::fabs(y_factor));
    sum.error = x->error * std::fabs(x_factor) + y->error * std::fabs(y_factor) + rounding + 1.0;
    return sum;
}

static void sum_turned(Lattice *lattice, const GdsARef *aref) {
    const PointTurn *turn = &lattice->turn;
    const LatticeSum x = position_sum(lattice->first_x, lattice->column_x, lattice->row_x, aref);
    const LatticeSum y = position_sum(lattice->first_y, lattice->column_y, lattice->row_y, aref);
    const f64 cosine = turn->cosine * turn->mag;
    const f64 sine = turn->sine * turn->mag;
    const f64 upright = turn->reflected ? -1.0 : 1.0;
    lattice->sum_x = turned_sum(&x, cosine, &y, -sine * upright);
    lattice->sum_y = turned_sum(&y, cosine * upright, &x, sine);
}

Lattice lattice_create(const GdsARef *aref, const PointTurn *turn, Point origin) {
    assert(aref != nullptr && turn != nullptr && aref->cols > 0 && aref->rows > 0);
    const f32 cols = static_cast<f32>(aref->cols);
    const f32 rows = static_cast<f32>(aref->rows);
    Lattice lattice = {};
    lattice.column_x = static_cast<f32>(wrap_subtract(aref->p2.x, aref->p1.x)) / cols;
    lattice.column_y = static_cast<f32>(wrap_subtract(aref->p2.y, aref->p1.y)) / cols;
    lattice.row_x = static_cast<f32>(wrap_subtract(aref->p3.x, aref->p1.x)) / rows;
    lattice.row_y = static_cast<f32>(wrap_subtract(aref->p3.y, aref->p1.y)) / rows;
    lattice.first_x = static_cast<f32>(aref->p1.x);
    lattice.first_y = static_cast<f32>(aref->p1.y);
    lattice.turn = *turn;
    lattice.origin = origin;
    lattice.turned = turn->sine != 0.0;
    if (lattice.turned) {
        sum_turned(&lattice, aref);
    }
    return lattice;
}

static f32 column_term(i32 column, f32 pitch, f32 first) {
    const f32 offset = static_cast<f32>(column) * pitch;
    return offset + first;
}

static f32 row_term(i32 row, f32 pitch) {
    return static_cast<f32>(row) * pitch;
}

Point lattice_position(const Lattice *lattice, i32 column, i32 row) {
    assert(lattice != nullptr && column >= 0 && row >= 0);
    const f32 x = row_term(row, lattice->row_x) + column_term(column, lattice->column_x, lattice->first_x);
    const f32 y = row_term(row, lattice->row_y) + column_term(column, lattice->column_y, lattice->first_y);
    return {truncate_i32(static_cast<f64>(x)), truncate_i32(static_cast<f64>(y))};
}

Point lattice_origin(const Lattice *lattice, i32 column, i32 row) {
    return point_move(turn_point(&lattice->turn, lattice_position(lattice, column, row)), lattice->origin);
}

static bool fits_i32(f64 value) {
    return value > -2147483649.0 && value < 2147483648.0;
}

// What truncate_i32 makes of the values of a range.
static Range truncate_range(FloatRange range) {
    if (fits_i32(range.low) && fits_i32(range.high)) {
        return {truncate_i32(range.low), truncate_i32(range.high)};
    }
    if (range.high <= -2147483649.0 || range.low >= 2147483648.0) {
        return {I32_MIN, I32_MIN};
    }
    return {I32_MIN, fits_i32(range.high) ? truncate_i32(range.high) : I32_MAX};
}

static Range position_range(f32 column_low, f32 column_high, f32 row_low, f32 row_high) {
    const f32 low = std::min(row_low, row_high) + std::min(column_low, column_high);
    const f32 high = std::max(row_low, row_high) + std::max(column_low, column_high);
    return truncate_range({static_cast<f64>(low), static_cast<f64>(high)});
}

static FloatRange range_times(FloatRange range, f64 factor) {
    if (factor < 0.0) {
        return {range.high * factor, range.low * factor};
    }
    return {range.low * factor, range.high * factor};
}

static FloatRange range_of(Range range) {
    return {static_cast<f64>(range.low), static_cast<f64>(range.high)};
}

// Moves a range by whole turns of 2^32 into the range of i32; false when its ends need different ones.
static bool wrap_range(Range *range) {
    const i64 half = i64{1} << 31;
    const i64 low_turns = (range->low + half) >> 32;
    const i64 high_turns = (range->high + half) >> 32;
    if (low_turns != high_turns) {
        return false;
    }
    range->low -= low_turns * 2 * half;
    range->high -= low_turns * 2 * half;
    return true;
}

// Where the sum lies over the block.
static FloatRange sum_range(const LatticeSum *sum, LatticeBlock block) {
    FloatRange column = {sum->by_column * block.column_begin, sum->by_column * (block.column_end - 1)};
    FloatRange row = {sum->by_row * block.row_begin, sum->by_row * (block.row_end - 1)};
    if (sum->by_column < 0.0) {
        std::swap(column.low, column.high);
    }
    if (sum->by_row < 0.0) {
        std::swap(row.low, row.high);
    }
    return {sum->at + column.low + row.low - sum->error, sum->at + column.high + row.high + sum->error};
}

// A turned lattice: the bounds from the ends of x and y apart are wide where both come from the same columns
// and rows, most of all where these cancel.
static void narrow_turned(const LatticeSum *sum, LatticeBlock block, Range *range) {
    const FloatRange turned = sum_range(sum, block);
    if (fits_i32(turned.low) && fits_i32(turned.high)) {
        range->low = std::max(range->low, static_cast<i64>(std::floor(turned.low)));
        range->high = std::min(range->high, static_cast<i64>(std::ceil(turned.high)));
    }
}

LatticeOrigins lattice_origins(const Lattice *lattice, LatticeBlock block) {
    assert(lattice != nullptr && lattice_block_size(block) > 0);
    const i32 c0 = block.column_begin;
    const i32 c1 = block.column_end - 1;
    const i32 r0 = block.row_begin;
    const i32 r1 = block.row_end - 1;
    Range x = position_range(column_term(c0, lattice->column_x, lattice->first_x),
                             column_term(c1, lattice->column_x, lattice->first_x),
                             row_term(r0, lattice->row_x), row_term(r1, lattice->row_x));
    Range y = position_range(column_term(c0, lattice->column_y, lattice->first_y),
                             column_term(c1, lattice->column_y, lattice->first_y),
                             row_term(r0, lattice->row_y), row_term(r1, lattice->row_y));
    const bool in_range = x.low > I32_MIN && y.low > I32_MIN && x.high < I32_MAX && y.high < I32_MAX;
    const PointTurn *turn = &lattice->turn;
    if (std::isfinite(turn->cosine) && std::isfinite(turn->mag)) {
        const FloatRange fx = range_of(x);
        FloatRange fy = range_of(y);
        if (turn->reflected) {
            fy = {-fy.high, -fy.low};
        }
        const FloatRange x_cosine = range_times(fx, turn->cosine);
        const FloatRange x_sine = range_times(fx, turn->sine);
        const FloatRange y_cosine = range_times(fy, turn->cosine);
        const FloatRange y_sine = range_times(fy, turn->sine);
        x = truncate_range(range_times({x_cosine.low - y_sine.high, x_cosine.high - y_sine.low}, turn->mag));
        y = truncate_range(range_times({y_cosine.low + x_sine.low, y_cosine.high + x_sine.high}, turn->mag));
        if (in_range && lattice->turned) {
            narrow_turned(&lattice->sum_x, block, &x);
            narrow_turned(&lattice->sum_y, block, &y);
        }
    } else {
        x = {I32_MIN, I32_MIN};  // every product is infinite or nan
        y = x;
    }
    LatticeOrigins origins;
    origins.x = {x.low + lattice->origin.x, x.high + lattice->origin.x};
    origins.y = {y.low + lattice->origin.y, y.high + lattice->origin.y};
    Range wrapped_x = origins.x;
    Range wrapped_y = origins.y;
    origins.known = wrap_range(&wrapped_x) && wrap_range(&wrapped_y);
    if (origins.known) {
        origins.x = wrapped_x;
        origins.y = wrapped_y;
    }
    return origins;
}

// The values of origin + offset, wrapped; the whole range of i32 when only some of them wrap.
static void grow_wrapped(Range origin, i32 offset, i32 *low, i32 *high) {
    Range range = {origin.low + offset, origin.high + offset};
    if (!wrap_range(&range)) {
        range = {I32_MIN, I32_MAX};
    }
    *low = std::min(*low, static_cast<i32>(range.low));
    *high = std::max(*high, static_cast<i32>(range.high));
}

Box lattice_box(const LatticeOrigins *origins, const BoxCorners *corners) {
    assert(origins != nullptr && corners != nullptr);
    Box box = BOX_EMPTY;
    for (const Point corner : corners->at) {
        grow_wrapped(origins->x, corner.x, &box.x_min, &box.x_max);
        grow_wrapped(origins->y, corner.y, &box.y_min, &box.y_max);
    }
    return box;
}

f32 lattice_column_spread(const Lattice *lattice, LatticeBlock block) {
    assert(lattice != nullptr && lattice_block_size(block) > 0);
    const i32 last = block.column_end - 1;
    const f32 x = column_term(last, lattice->column_x, lattice->first_x) -
                  column_term(block.column_begin, lattice->column_x, lattice->first_x);
    const f32 y = column_term(last, lattice->column_y, lattice->first_y) -
                  column_term(block.column_begin, lattice->column_y, lattice->first_y);
    return std::max(std::fabs(x), std::fabs(y));
}

f32 lattice_row_spread(const Lattice *lattice, LatticeBlock block) {
    assert(lattice != nullptr && lattice_block_size(block) > 0);
    const i32 last = block.row_end - 1;
    const f32 x = row_term(last, lattice->row_x) - row_term(block.row_begin, lattice->row_x);
    const f32 y = row_term(last, lattice->row_y) - row_term(block.row_begin, lattice->row_y);
    return std::max(std::fabs(x), std::fabs(y));
}

i32 lattice_lines(LatticeBlock block, LatticeSide side) {
    return side == ROWS_FIRST || side == ROWS_LAST ? block.row_end - block.row_begin
                                                   : block.column_end - block.column_begin;
}

LatticeBlock lattice_cut(LatticeBlock *block, LatticeSide side, i32 count) {
    assert(block != nullptr && count > 0 && count <= lattice_lines(*block, side));
    LatticeBlock cut = *block;
    switch (side) {
        case ROWS_FIRST: block->row_begin = cut.row_end = cut.row_begin + count; break;
        case ROWS_LAST: block->row_end = cut.row_begin = cut.row_end - count; break;
        case COLUMNS_FIRST: block->column_begin = cut.column_end = cut.column_begin + count; break;
        case COLUMNS_LAST: block->column_end = cut.column_begin = cut.column_end - count; break;
    }
    return cut;
}

static constexpr i64 ARRAY_STEPS = 64;  // of sizing that each array may take without being counted

static bool box_contains(const Box *outer, const Box *inner) {
    return outer->x_min <= inner->x_min && outer->y_min <= inner->y_min && outer->x_max >= inner->x_max &&
           outer->y_max >= inner->y_max;
}

// Halves the block where its elements spread more; false when its corners are all it has.
static bool block_split(const Lattice *lattice, LatticeBlock block, LatticeBlock *one, LatticeBlock *two) {
    const i32 columns = block.column_end - block.column_begin;
    const i32 rows = block.row_end - block.row_begin;
    if (columns <= 2 && rows <= 2) {
        return false;
    }
    const bool by_column = columns > 1 && (rows == 1 || lattice_column_spread(lattice, block) >=
                                                            lattice_row_spread(lattice, block));
    *one = block;
    *two = block;
    if (by_column) {
        one->column_end = two->column_begin = block.column_begin + columns / 2;
    } else {
        one->row_end = two->row_begin = block.row_begin + rows / 2;
    }
    return true;
}

bool lattice_grow_box(const Lattice *lattice, const BoxCorners *corners, LatticeBlock block, Box *box,
                      i64 *steps, i64 step_limit) {
    assert(lattice != nullptr && corners != nullptr && box != nullptr && steps != nullptr);
    bool exact = true;
    LatticeBlock pending[64];  // at most one more per halving: 16 of columns, 16 of rows
    i32 pending_count = 0;
    if (lattice_block_size(block) > 0) {
        pending[pending_count++] = block;
    }
    for (i64 here = 0; pending_count > 0 && !platform_interrupted(); ++here) {
        *steps += here < ARRAY_STEPS ? 0 : 1;
        block = pending[--pending_count];
        if (lattice_column_spread(lattice, block) == 0.0F) {
            block.column_end = block.column_begin + 1;
        }
        if (lattice_row_spread(lattice, block) == 0.0F) {
            block.row_end = block.row_begin + 1;
        }
        const LatticeOrigins origins = lattice_origins(lattice, block);
        const Box bounds = lattice_box(&origins, corners);
        if (box_contains(box, &bounds)) {
            continue;
        }
        const i32 column_last = block.column_end - 1;
        const i32 row_last = block.row_end - 1;
        box_grow(box, corners_box(corners, lattice_origin(lattice, block.column_begin, block.row_begin)));
        box_grow(box, corners_box(corners, lattice_origin(lattice, block.column_begin, row_last)));
        box_grow(box, corners_box(corners, lattice_origin(lattice, column_last, block.row_begin)));
        box_grow(box, corners_box(corners, lattice_origin(lattice, column_last, row_last)));
        LatticeBlock one;
        LatticeBlock two;
        if (box_contains(box, &bounds) || !block_split(lattice, block, &one, &two)) {
            continue;
        }
        if (*steps < step_limit) {
            pending[pending_count++] = two;
            pending[pending_count++] = one;
        } else {
            box_grow(box, bounds);
            exact = false;
        }
    }
    return exact;
}
