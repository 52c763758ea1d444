// Flattening. The hierarchy is walked with a stack of its own on the heap, since files may nest deeper
// than the machine's stack allows. What keeps hostile hierarchies from costing time without giving polygons:
// blocks of an array that miss the window are left out whole; cells without polygons below them are not
// entered; a cell whose walk added nothing is not walked again where moving it cannot make a difference
// (gds_slack.h); and the steps that remain are counted and bounded.
#include "gds/gds_flatten.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "gds/gds_slack.h"
#include "log/log.h"
#include "platform/owned.h"
#include "platform/platform.h"

// Steps, about what takes equally long: a polygon that is looked at is one.
static constexpr i64 PLACEMENT_STEPS = 8;  // for a placement, or a block of an array, that is looked at
static constexpr i64 KEPT_STEPS = 16;      // that each polygon taken allows beyond the limit
static constexpr i64 ARRAY_STEPS = 16 * PLACEMENT_STEPS;  // that each array of the file allows once

static constexpr i64 ANGLE_STEPS = 64;  // for the sine and cosine of an angle that has not been met lately

static constexpr u32 ANGLES_MET = 256;

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
    i64 number;  // from 1, of all frames there have been
    bool first;  // of its cell: what the file holds is looked at once without being counted
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

// A cell that has been entered; its `flatten_number` is its place in the walk's list, from 1.
struct EnteredCell {
    GdsCell *cell;
    i32 memos;  // place in the walk's list of them, from 1; 0: none
};

struct FlattenWalk {
    FlattenContext *context;
    Owned<FlattenFrame[]> frames;
    i32 frame_count, frame_capacity;
    Owned<LatticeBlock[]> blocks;
    i32 block_count, block_capacity;
    Owned<EnteredCell[]> entered;
    i32 entered_count, entered_capacity;
    Owned<CellMemos[]> memos;
    i32 memos_count, memos_capacity;
    FlattenArray array;
    u32 angles[ANGLES_MET];  // met lately, each in the place that its bits name
    i64 frames_made;
    i64 steps, steps_allowed, steps_most;
    i32 kept_before;
};

// A sum of counts that stays at the largest i64.
static i64 add_count(i64 sum, i64 count, i64 times) {
    if (count > 0 && times > (I64_MAX - sum) / count) {
        return I64_MAX;
    }
    return sum + count * times;
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

// True when the cell has not been entered before.
static bool note_entered(FlattenWalk *walk, GdsCell *cell) {
    if (cell->flatten_number != 0) {
        return false;
    }
    array_append(&walk->entered, &walk->entered_count, &walk->entered_capacity, EnteredCell{cell, 0}, 64);
    cell->flatten_number = walk->entered_count;
    return true;
}

// Flattens the cell's own polygons; its references follow from gds_flatten's loop.
//   slack   of the test of the cell's extent
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
    frame.number = ++walk->frames_made;
    frame.first = note_entered(walk, cell);
    cell->visiting = 1;
    walk->steps += frame.first ? 0 : cell->polygon_count;
    const i32 result = flatten_polygons(context, &frame);
    array_append(&walk->frames, &walk->frame_count, &walk->frame_capacity, frame, 64);
    return result;
}

// Keeps what the walk of the frame came to, for other placements of its cell.
static void keep_memo(FlattenWalk *walk, const FlattenFrame *frame, const FlattenFrame *parent) {
    EnteredCell *entered = &walk->entered[frame->cell->flatten_number - 1];
    if (entered->memos == 0) {
        array_append(&walk->memos, &walk->memos_count, &walk->memos_capacity, CellMemos{}, 16);
        entered->memos = walk->memos_count;
    }
    // Below a cell that is in a cycle, what is entered depends on the cells above it.
    const i64 holds_for = frame->cell->acyclic != 0 ? 0 : parent->number;
    const FlattenMemo memo = {frame->placement, frame->slack, walk->context->skipped - frame->start_skipped,
                              holds_for};
    memos_add(&walk->memos[entered->memos - 1], &memo);
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
    slack_narrow(&parent->slack, &frame->slack);
    if (walk->context->out->count == frame->start_count) {
        keep_memo(walk, frame, parent);
    }
}

// Whether placements with origins in the given ranges are sure to come to what a memo says. Then they are
// counted, and the frame's slack narrowed to where that stays so.
static bool memo_covers(FlattenWalk *walk, FlattenFrame *frame, const GdsCell *child, GdsPlacement placement,
                        Range x, Range y, i64 count) {
    const i32 memos = child->flatten_number != 0 ? walk->entered[child->flatten_number - 1].memos : 0;
    if (memos == 0) {
        return false;
    }
    const PlacedGroup group = {placement, x, y, frame->number};
    const FlattenMemo *memo = memos_find(&walk->memos[memos - 1], &group, &frame->slack);
    if (memo == nullptr) {
        return false;
    }
    FlattenContext *context = walk->context;
    context->skipped = add_count(context->skipped, memo->skipped, count);
    return true;
}

// One placed child: counted from the memo, passed over outside the window, or entered.
static i32 flatten_child(FlattenWalk *walk, FlattenFrame *frame, GdsCell *child, GdsPlacement placement,
                         const PointTurn *turn, const BoxCorners *corners) {
    const Range x = {placement.origin.x, placement.origin.x};
    const Range y = {placement.origin.y, placement.origin.y};
    if (memo_covers(walk, frame, child, placement, x, y, 1)) {
        return 0;
    }
    const Box box = corners_box(corners, placement.origin);
    FlattenSlack slack = SLACK_ANY;
    if (test_overlap(&slack, &walk->context->window, &box)) {
        return walk_enter(walk, child, placement, turn, slack);
    }
    slack_narrow(&frame->slack, &slack);
    return 0;
}

static bool child_counts(const GdsCell *child) {
    return child != nullptr && child->visiting == 0 && child->bare == 0;
}

// Counts what an angle takes. Only from where this walk began, so that it comes to the same every time.
static void count_angle(FlattenWalk *walk, f32 angle) {
    u32 bits = 0;
    std::memcpy(&bits, &angle, sizeof(bits));
    u32 *met = &walk->angles[(bits * 0x9E3779B1U) >> 24];  // multiplicative hashing (Knuth)
    walk->steps += *met == bits ? 0 : ANGLE_STEPS;
    *met = bits;
}

static i32 flatten_sref(FlattenWalk *walk, FlattenFrame *frame, const GdsSRef *sref) {
    if (!child_counts(sref->cell)) {
        return 0;
    }
    const GdsPlacement placement =
        placement_child(&frame->turn, frame->placement, sref->origin, sref->mag, sref->angle, sref->flags);
    if (!frame->first) {
        count_angle(walk, placement.angle);
    }
    const PointTurn turn = placement_turn(placement);
    const BoxCorners corners = turn_box(&turn, sref->cell->bbox);
    return flatten_child(walk, frame, sref->cell, placement, &turn, &corners);
}

static void push_block(FlattenWalk *walk, LatticeBlock block) {
    array_append(&walk->blocks, &walk->block_count, &walk->block_capacity, block, 64);
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
    if (!frame->first) {
        count_angle(walk, array->element.angle);
    }
    array->turn = placement_turn(array->element);
    array->corners = turn_box(&array->turn, aref->cell->bbox);
}

// Whether a block of the array at hand misses the window as a whole.
static bool block_misses(FlattenWalk *walk, FlattenFrame *frame, LatticeBlock block) {
    walk->steps += PLACEMENT_STEPS;
    const LatticeOrigins origins = lattice_origins(&walk->array.lattice, block);
    const Box box = lattice_box(&origins, &walk->array.corners);
    if (boxes_overlap(&walk->context->window, &box)) {
        return false;
    }
    slack_note(&frame->slack, &walk->context->window, &box, false);
    return true;
}

// Cuts rows or columns that miss the window off one side of a block, twice as many each time and then half as
// many, so that a window far inside an array is found in few steps.
static void trim_block(FlattenWalk *walk, FlattenFrame *frame, LatticeBlock *block, LatticeSide side) {
    bool grows = true;
    for (i32 count = 1; count > 0 && lattice_block_size(*block) > 0;) {
        count = std::min(count, lattice_lines(*block, side));
        LatticeBlock rest = *block;
        const LatticeBlock cut = lattice_cut(&rest, side, count);
        const bool misses = block_misses(walk, frame, cut);
        if (misses) {
            *block = rest;
        }
        grows = grows && misses;
        count = grows ? count * 2 : count / 2;
    }
}

// Opens the latest AREF of the frame on top: what is left of it near the window waits as one block.
static void open_aref(FlattenWalk *walk, FlattenFrame *frame) {
    const GdsARef *aref = &frame->cell->arefs[frame->next_aref - 1];
    walk->steps += frame->first ? 0 : PLACEMENT_STEPS;
    if (!child_counts(aref->cell) || aref->cols <= 0 || aref->rows <= 0) {
        return;
    }
    walk->steps_allowed += frame->first ? ARRAY_STEPS : 0;
    prepare_array(walk, frame);
    LatticeBlock block = {0, aref->cols, 0, aref->rows};
    if (lattice_block_size(block) > 1) {
        for (const LatticeSide side : {ROWS_FIRST, ROWS_LAST, COLUMNS_FIRST, COLUMNS_LAST}) {
            trim_block(walk, frame, &block, side);
        }
    }
    if (lattice_block_size(block) > 0) {
        push_block(walk, block);
    }
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
    walk->steps += PLACEMENT_STEPS;
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
    if (origins.known && memo_covers(walk, frame, child, array->element, origins.x, origins.y, count)) {
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

// The next thing to do for the frame on top.
static i32 walk_on(FlattenWalk *walk) {
    FlattenFrame *frame = &walk->frames[walk->frame_count - 1];
    if (walk->block_count > frame->block_base) {
        return flatten_block(walk, frame);
    }
    if (frame->next_sref < frame->cell->sref_count) {
        walk->steps += frame->first ? 0 : PLACEMENT_STEPS;
        return flatten_sref(walk, frame, &frame->cell->srefs[frame->next_sref++]);
    }
    if (frame->next_aref < frame->cell->aref_count) {
        ++frame->next_aref;
        open_aref(walk, frame);
    } else {
        walk_leave(walk);
    }
    return 0;
}

// Steps that count, so far.
static i64 counted_steps(const FlattenWalk *walk) {
    const i64 kept = i64{walk->context->out->count} - walk->kept_before;
    return walk->steps - walk->steps_allowed - KEPT_STEPS * kept;
}

// 0, or 30 when the steps have reached their limit, told with the cell that is being walked.
static i32 check_steps(FlattenWalk *walk) {
    const FlattenContext *context = walk->context;
    if (counted_steps(walk) <= walk->steps_most) {
        return 0;
    }
    const FlattenFrame *frame = &walk->frames[walk->frame_count - 1];
    const WideText name = platform_wide_from_system(nstring_text(frame->cell->name));
    diagnostic_write(
        L"more than %lld steps through references and polygons gave only %d polygons of the section and its "
        L"margin; this limit was reached in cell \"%ls\"",
        static_cast<long long>(walk->steps_most), context->out->count, name.get());
    return GDS_FLATTEN_LIMIT_REACHED;
}

i32 gds_flatten(FlattenContext *context, const GdsInstance *instance) {
    assert(context != nullptr && context->out != nullptr);
    assert(instance != nullptr && instance->cell != nullptr && instance->cell->visiting == 0);
    assert(instance->cell->bbox_valid != 0);
    FlattenWalk walk = {};
    walk.context = context;
    walk.array.frame_number = -1;
    walk.kept_before = context->out->count;
    walk.steps_most = context->step_limit > 0 ? context->step_limit : GDS_FLATTEN_STEP_LIMIT;
    const PointTurn turn = placement_turn(instance->placement);
    i32 result = walk_enter(&walk, instance->cell, instance->placement, &turn, SLACK_ANY);
    for (i64 moves = 1; result == 0 && walk.frame_count > 0; ++moves) {
        if (context->most_work > 0 && moves + context->out->point_total > context->most_work) {
            result = GDS_FLATTEN_GIVEN_UP;
        } else {
            result = platform_interrupted() ? GDS_FLATTEN_INTERRUPTED : walk_on(&walk);
        }
        if (result == 0 && walk.frame_count > 0) {
            result = check_steps(&walk);
        }
    }
    for (i32 i = 0; i < walk.frame_count; ++i) {
        walk.frames[i].cell->visiting = 0;
    }
    for (i32 i = 0; i < walk.entered_count; ++i) {
        walk.entered[i].cell->flatten_number = 0;
    }
    context->steps = std::max(i64{0}, counted_steps(&walk));
    return result;
}
