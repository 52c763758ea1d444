// Flattening. The hierarchy is walked with a stack of its own on the heap, since files may nest deeper
// than the machine's stack allows. Three things keep hostile hierarchies from costing time without
// giving polygons: blocks of an array that miss the window are left out whole; cells without polygons
// below them are not entered; and a cell whose walk added nothing is not walked again by its parent
// where moving it cannot make a difference (`FlattenSlack`).
#include "gds/gds_flatten.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "gds/gds_lattice.h"
#include "log/log.h"
#include "platform/owned.h"
#include "platform/platform.h"

// How far something can be moved with every overlap test inside it coming out the same and no corner
// wrapping around at the ends of i32. All bounds included.
struct FlattenSlack {
    Range x, y;
};

static constexpr Range RANGE_ALL = {-(i64{1} << 40), i64{1} << 40};  // beyond any difference of two i32

// What the walk of a placed cell that added no polygon came to.
struct FlattenMemo {
    GdsCell *cell;  // null: none
    GdsPlacement placement;
    FlattenSlack slack;
    i64 skipped;
};

// A cell being flattened.
struct FlattenFrame {
    GdsCell *cell;
    GdsPlacement placement;
    PointTurn turn;
    FlattenSlack slack;  // of all tests so far
    i32 next_sref, next_aref;
    i32 block_base;  // the blocks of its open AREF are those of the walk from here on
    i32 start_count;
    i64 start_skipped;
    FlattenMemo memo;  // the latest child that added nothing
};

// The AREF whose blocks are being walked, worked out for the frame on top.
struct FlattenArray {
    i32 frame_number;  // -1: none
    const GdsARef *aref;
    Lattice lattice;
    GdsPlacement element;  // of its elements but for the origin
    PointTurn turn;        // of the same
    BoxCorners corners;    // of the turned extent of the AREF's cell
};

struct FlattenWalk {
    FlattenContext *context;
    Owned<FlattenFrame[]> frames;
    i32 frame_count, frame_capacity;
    Owned<LatticeBlock[]> blocks;
    i32 block_count, block_capacity;
    FlattenArray array;
};

// A sum of counts that stays at the largest i64.
static i64 add_count(i64 sum, i64 count, i64 times) {
    if (count > 0 && times > (I64_MAX - sum) / count) {
        return I64_MAX;
    }
    return sum + count * times;
}

static bool boxes_overlap(const Box *window, const Box *box) {
    return window->x_min < box->x_max && window->x_max > box->x_min && window->y_max > box->y_min &&
           window->y_min < box->y_max;
}

static void narrow(Range *range, i64 low, i64 high) {
    range->low = std::max(range->low, low);
    range->high = std::min(range->high, high);
}

// Takes the test of a box (or of a box around several) against the window into account.
static void slack_note(FlattenSlack *slack, const Box *window, const Box *box, bool overlap) {
    narrow(&slack->x, i64{I32_MIN} - box->x_min, i64{I32_MAX} - box->x_max);
    narrow(&slack->y, i64{I32_MIN} - box->y_min, i64{I32_MAX} - box->y_max);
    // Distances at which one of the four comparisons turns.
    const i64 left = i64{window->x_min} - box->x_max;
    const i64 right = i64{window->x_max} - box->x_min;
    const i64 below = i64{window->y_min} - box->y_max;
    const i64 above = i64{window->y_max} - box->y_min;
    if (overlap) {
        narrow(&slack->x, left + 1, right - 1);
        narrow(&slack->y, below + 1, above - 1);
    } else if (left >= 0) {
        slack->x.high = std::min(slack->x.high, left);
    } else if (right <= 0) {
        slack->x.low = std::max(slack->x.low, right);
    } else if (below >= 0) {
        slack->y.high = std::min(slack->y.high, below);
    } else {
        slack->y.low = std::max(slack->y.low, above);
    }
}

static bool test_overlap(FlattenSlack *slack, const Box *window, const Box *box) {
    const bool overlap = boxes_overlap(window, box);
    slack_note(slack, window, box, overlap);
    return overlap;
}

// Micrometres from the window's corner.
static FlatPoint flat_point(const FlattenContext *context, Point point) {
    return {static_cast<f32>(wrap_subtract(point.x, context->window.x_min)) * context->scale,
            static_cast<f32>(wrap_subtract(point.y, context->window.y_min)) * context->scale};
}

static void append_polygon(FlattenContext *context, const FlattenFrame *frame, const GdsPolygon *polygon) {
    FlatPolygon flat;
    flat.points = memory_new_array<FlatPoint>(polygon->point_count);
    flat.point_count = polygon->point_count;
    flat.layer = polygon->layer;
    flat.datatype = polygon->datatype;
    Box box = BOX_EMPTY;
    for (i32 i = 0; i < polygon->point_count; ++i) {
        const Point point = point_move(turn_point(&frame->turn, polygon->points[i]), frame->placement.origin);
        box_grow_point(&box, point);
        flat.points[i] = flat_point(context, point);
    }
    const FlatPoint low = flat_point(context, {box.x_min, box.y_min});
    const FlatPoint high = flat_point(context, {box.x_max, box.y_max});
    flat.x_min = low.x;
    flat.y_min = low.y;
    flat.x_max = high.x;
    flat.y_max = high.y;
    PolygonList *out = context->out;
    array_append(&out->items, &out->count, &out->capacity, flat);
    out->point_total += flat.point_count;
}

// 0, or 30 at a limit, told with the cell whose polygon reached it.
static i32 check_limits(const FlattenContext *context, const GdsCell *cell) {
    const bool many_polygons = context->out->count == GDS_FLATTEN_LIMIT;
    if (!many_polygons && context->out->point_total <= GDS_FLATTEN_POINT_LIMIT) {
        return 0;
    }
    const WideText name = platform_wide_from_system(nstring_text(cell->name));
    if (many_polygons) {
        diagnostic_write(
            L"%d or more polygons lie in the section and its margin, the limit; it was reached in cell "
            L"\"%ls\"",
            GDS_FLATTEN_LIMIT, name.get());
    } else {
        diagnostic_write(
            L"more than %lld points of polygons lie in the section and its margin; the limit was reached "
            L"with %d polygons, in cell \"%ls\"",
            static_cast<long long>(GDS_FLATTEN_POINT_LIMIT), context->out->count, name.get());
    }
    return GDS_FLATTEN_LIMIT_REACHED;
}

// Returns 0, 30 at a limit, or -2 after an interrupt.
static i32 flatten_polygons(FlattenContext *context, FlattenFrame *frame) {
    const GdsCell *cell = frame->cell;
    for (i32 i = 0; i < cell->polygon_count; ++i) {
        const GdsPolygon *polygon = &cell->polygons[i];
        if (i % 256 == 255 && platform_interrupted()) {
            return GDS_FLATTEN_INTERRUPTED;
        }
        if (polygon->point_count == 0) {
            continue;
        }
        const Box box = placed_box(&frame->turn, frame->placement.origin, polygon->bbox);
        if (!test_overlap(&frame->slack, &context->window, &box)) {
            continue;
        }
        const i64 size = std::min(i64{box.x_max} - box.x_min, i64{box.y_max} - box.y_min);
        context->smallest = std::min(context->smallest, size);
        if (size < context->min_size) {
            context->skipped = add_count(context->skipped, 1, 1);
            continue;
        }
        append_polygon(context, frame, polygon);
        const i32 result = check_limits(context, cell);
        if (result != 0) {
            return result;
        }
    }
    return 0;
}

// Flattens the cell's own polygons; its references follow from gds_flatten's loop.
static i32 walk_enter(FlattenWalk *walk, GdsCell *cell, GdsPlacement placement, const PointTurn *turn,
                      FlattenSlack slack) {
    FlattenContext *context = walk->context;
    FlattenFrame frame = {};
    frame.cell = cell;
    frame.placement = placement;
    frame.turn = *turn;
    frame.slack = slack;
    frame.block_base = walk->block_count;
    frame.start_count = context->out->count;
    frame.start_skipped = context->skipped;
    cell->visiting = 1;
    const i32 result = flatten_polygons(context, &frame);
    array_append(&walk->frames, &walk->frame_count, &walk->frame_capacity, frame, 64);
    return result;
}

static void walk_leave(FlattenWalk *walk) {
    const FlattenFrame *frame = &walk->frames[--walk->frame_count];
    if (walk->array.frame_number == walk->frame_count) {
        walk->array.frame_number = -1;
    }
    frame->cell->visiting = 0;
    if (walk->frame_count == 0) {
        return;
    }
    FlattenFrame *parent = &walk->frames[walk->frame_count - 1];
    narrow(&parent->slack.x, frame->slack.x.low, frame->slack.x.high);
    narrow(&parent->slack.y, frame->slack.y.low, frame->slack.y.high);
    if (walk->context->out->count == frame->start_count) {
        parent->memo = {frame->cell, frame->placement, frame->slack,
                        walk->context->skipped - frame->start_skipped};
    }
}

// Equal, or both the same nan.
static bool same_bits(f32 a, f32 b) {
    u32 a_bits = 0;
    u32 b_bits = 0;
    std::memcpy(&a_bits, &a, sizeof(a));
    std::memcpy(&b_bits, &b, sizeof(b));
    return a_bits == b_bits;
}

// Whether `count` placements with origins in the given ranges are sure to come to what the memo says.
// Then they are counted, and the frame's slack narrowed to where that stays so.
static bool memo_covers(FlattenContext *context, FlattenFrame *frame, const GdsCell *cell,
                        GdsPlacement placement, Range x, Range y, i64 count) {
    const FlattenMemo *memo = &frame->memo;
    if (memo->cell != cell || memo->placement.flags != placement.flags ||
        !same_bits(memo->placement.mag, placement.mag) ||
        !same_bits(memo->placement.angle, placement.angle)) {
        return false;
    }
    const Range slack_x = {memo->slack.x.low - (x.low - memo->placement.origin.x),
                           memo->slack.x.high - (x.high - memo->placement.origin.x)};
    const Range slack_y = {memo->slack.y.low - (y.low - memo->placement.origin.y),
                           memo->slack.y.high - (y.high - memo->placement.origin.y)};
    if (slack_x.low > 0 || slack_x.high < 0 || slack_y.low > 0 || slack_y.high < 0) {
        return false;
    }
    narrow(&frame->slack.x, slack_x.low, slack_x.high);
    narrow(&frame->slack.y, slack_y.low, slack_y.high);
    context->skipped = add_count(context->skipped, memo->skipped, count);
    return true;
}

// One placed child: counted from the memo, passed over outside the window, or entered.
static i32 flatten_child(FlattenWalk *walk, FlattenFrame *frame, GdsCell *child, GdsPlacement placement,
                         const PointTurn *turn, const BoxCorners *corners) {
    const Range x = {placement.origin.x, placement.origin.x};
    const Range y = {placement.origin.y, placement.origin.y};
    if (memo_covers(walk->context, frame, child, placement, x, y, 1)) {
        return 0;
    }
    const Box box = corners_box(corners, placement.origin);
    FlattenSlack slack = {RANGE_ALL, RANGE_ALL};
    if (test_overlap(&slack, &walk->context->window, &box)) {
        return walk_enter(walk, child, placement, turn, slack);
    }
    narrow(&frame->slack.x, slack.x.low, slack.x.high);
    narrow(&frame->slack.y, slack.y.low, slack.y.high);
    return 0;
}

static bool child_counts(const GdsCell *child) {
    return child != nullptr && child->visiting == 0 && child->bare == 0;
}

static i32 flatten_sref(FlattenWalk *walk, FlattenFrame *frame, const GdsSRef *sref) {
    if (!child_counts(sref->cell)) {
        return 0;
    }
    const GdsPlacement placement =
        placement_child(&frame->turn, frame->placement, sref->origin, sref->mag, sref->angle, sref->flags);
    const PointTurn turn = placement_turn(placement);
    const BoxCorners corners = turn_box(&turn, sref->cell->bbox);
    return flatten_child(walk, frame, sref->cell, placement, &turn, &corners);
}

static void push_block(FlattenWalk *walk, LatticeBlock block) {
    array_append(&walk->blocks, &walk->block_count, &walk->block_capacity, block, 64);
}

static void open_aref(FlattenWalk *walk, const GdsARef *aref) {
    if (child_counts(aref->cell) && aref->cols > 0 && aref->rows > 0) {
        push_block(walk, {0, aref->cols, 0, aref->rows});
    }
}

// Works out the array of the frame on top, unless it is at hand.
static void prepare_array(FlattenWalk *walk, const FlattenFrame *frame) {
    FlattenArray *array = &walk->array;
    const GdsARef *aref = &frame->cell->arefs[frame->next_aref - 1];
    if (array->frame_number == walk->frame_count - 1 && array->aref == aref) {
        return;
    }
    array->frame_number = walk->frame_count - 1;
    array->aref = aref;
    array->lattice = lattice_create(aref, &frame->turn, frame->placement.origin);
    array->element =
        placement_child(&frame->turn, frame->placement, aref->p1, aref->mag, aref->angle, aref->flags);
    array->turn = placement_turn(array->element);
    array->corners = turn_box(&array->turn, aref->cell->bbox);
}

// Columns are the outer order, so a block is halved into columns first and then into rows.
static void split_block(FlattenWalk *walk, LatticeBlock block) {
    LatticeBlock first = block;
    LatticeBlock second = block;
    const i32 columns = block.column_end - block.column_begin;
    if (columns > 1) {
        first.column_end = second.column_begin = block.column_begin + columns / 2;
    } else {
        first.row_end = second.row_begin = block.row_begin + (block.row_end - block.row_begin) / 2;
    }
    push_block(walk, second);
    push_block(walk, first);
}

// The latest block of the frame's open AREF: counted, passed over or halved as a whole.
static i32 flatten_block(FlattenWalk *walk, FlattenFrame *frame) {
    const LatticeBlock block = walk->blocks[--walk->block_count];
    prepare_array(walk, frame);
    const FlattenArray *array = &walk->array;
    GdsCell *child = array->aref->cell;
    const i64 count = lattice_block_size(block);
    if (count == 1) {
        GdsPlacement placement = array->element;
        placement.origin = lattice_origin(&array->lattice, block.column_begin, block.row_begin);
        return flatten_child(walk, frame, child, placement, &array->turn, &array->corners);
    }
    const LatticeOrigins origins = lattice_origins(&array->lattice, block);
    if (origins.known &&
        memo_covers(walk->context, frame, child, array->element, origins.x, origins.y, count)) {
        return 0;
    }
    const Box box = lattice_box(&origins, &array->corners);
    if (boxes_overlap(&walk->context->window, &box)) {
        split_block(walk, block);
    } else {
        slack_note(&frame->slack, &walk->context->window, &box, false);
    }
    return 0;
}

i32 gds_flatten(FlattenContext *context, const GdsInstance *instance) {
    assert(context != nullptr && context->out != nullptr);
    assert(instance != nullptr && instance->cell != nullptr && instance->cell->visiting == 0);
    assert(instance->cell->bbox_valid != 0);
    FlattenWalk walk = {};
    walk.context = context;
    walk.array.frame_number = -1;
    const PointTurn turn = placement_turn(instance->placement);
    i32 result = walk_enter(&walk, instance->cell, instance->placement, &turn, {RANGE_ALL, RANGE_ALL});
    for (i64 step = 1; result == 0 && walk.frame_count > 0; ++step) {
        FlattenFrame *frame = &walk.frames[walk.frame_count - 1];
        if (context->most_work > 0 && step + context->out->point_total > context->most_work) {
            result = GDS_FLATTEN_GIVEN_UP;
        } else if (platform_interrupted()) {
            result = GDS_FLATTEN_INTERRUPTED;
        } else if (walk.block_count > frame->block_base) {
            result = flatten_block(&walk, frame);
        } else if (frame->next_sref < frame->cell->sref_count) {
            result = flatten_sref(&walk, frame, &frame->cell->srefs[frame->next_sref++]);
        } else if (frame->next_aref < frame->cell->aref_count) {
            open_aref(&walk, &frame->cell->arefs[frame->next_aref++]);
        } else {
            walk_leave(&walk);
        }
    }
    for (i32 i = 0; i < walk.frame_count; ++i) {
        walk.frames[i].cell->visiting = 0;
    }
    return result;
}
