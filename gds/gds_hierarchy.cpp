// The extent of cells. The hierarchy is walked with a stack of its own on the heap, since files may
// nest deeper than the machine's stack allows.
#include "gds/gds_hierarchy.h"

#include <cassert>

#include "gds/gds_lattice.h"
#include "log/log.h"
#include "log/shown_text.h"
#include "platform/owned.h"
#include "platform/platform.h"

// A cell being sized.
struct SizeFrame {
    GdsCell *cell;
    GdsPlacement placement;
    PointTurn turn;
    Box box;  // found so far, in the coordinates of the placement's parent
    i32 next_sref, next_aref;
    bool above_cycle;  // a reference met so far leads to a cell that is being sized, or to such a one
    bool array_begun;  // element (0, 0) of the next AREF has been sized on its own
};

struct SizeWalk {
    Owned<SizeFrame[]> frames;
    i32 frame_count, frame_capacity;
    i64 steps;  // blocks of arrays looked at, without those that each array may have
    bool told;  // that they have reached their limit
};

static void walk_enter(SizeWalk *walk, GdsCell *cell, GdsPlacement placement) {
    SizeFrame frame = {};
    frame.cell = cell;
    frame.placement = placement;
    frame.turn = placement_turn(placement);
    // Starts at the cell's origin rather than empty; kept so, since the listed sizes and all pruning
    // of references rest on it.
    Box box = {0, 0, 0, 0};
    for (i32 i = 0; i < cell->polygon_count; ++i) {
        box_grow(&box, cell->polygons[i].bbox);
    }
    frame.box = placed_box(&frame.turn, placement.origin, box);
    cell->visiting = 1;
    array_append(&walk->frames, &walk->frame_count, &walk->frame_capacity, frame, 64);
}

// The extent may come out too wide from here on.
static void tell_limit(SizeWalk *walk, const GdsARef *aref) {
    const GdsCell *parent = walk->frames[walk->frame_count - 1].cell;
    diagnostic_write(
        L"the arrays take more than %lld steps to be sized; that of cell \"%ls\" in cell \"%ls\", and "
        L"others, "
        L"may be listed a few units too large",
        static_cast<long long>(GDS_SIZE_STEP_LIMIT), shown_text(nstring_text(aref->cell->name)).text,
        shown_text(nstring_text(parent->name)).text);
    walk->told = true;
}

// Grows the box of the frame on top by a block of equal boxes at the elements of an array.
static void grow_by_block(SizeWalk *walk, const GdsARef *aref, const Lattice *lattice,
                          const BoxCorners *corners, LatticeBlock block) {
    Box *box = &walk->frames[walk->frame_count - 1].box;
    if (!lattice_grow_box(lattice, corners, block, box, &walk->steps, GDS_SIZE_STEP_LIMIT) && !walk->told) {
        tell_limit(walk, aref);
    }
}

// A cycle is closed by a cell that is being sized further up. What is below a sized cell is known.
static void note_cycle(SizeFrame *frame, const GdsCell *child) {
    if (child != nullptr) {
        frame->above_cycle |= child->visiting != 0 || (child->bbox_valid != 0 && child->acyclic == 0);
    }
}

static void size_sref(SizeWalk *walk, SizeFrame *frame, const GdsSRef *sref) {
    GdsCell *child = sref->cell;
    note_cycle(frame, child);
    if (child == nullptr || child->visiting != 0) {
        return;
    }
    const GdsPlacement placement =
        placement_child(&frame->turn, frame->placement, sref->origin, sref->mag, sref->angle, sref->flags);
    if (child->bbox_valid != 0) {
        box_grow(&frame->box, box_place(child->bbox, placement, false));
    } else {
        walk_enter(walk, child, placement);
    }
}

// True when the AREF is done; false when its cell has been entered for element (0, 0) first.
static bool size_aref(SizeWalk *walk, SizeFrame *frame, const GdsARef *aref) {
    GdsCell *child = aref->cell;
    note_cycle(frame, child);
    if (child == nullptr || child->visiting != 0 || aref->cols <= 0 || aref->rows <= 0) {
        return true;
    }
    const Lattice lattice = lattice_create(aref, &frame->turn, frame->placement.origin);
    const GdsPlacement placement =
        placement_child(&frame->turn, frame->placement, lattice_position(&lattice, 0, 0), aref->mag,
                        aref->angle, aref->flags);
    if (child->bbox_valid == 0) {
        frame->array_begun = true;
        walk_enter(walk, child, placement);
        return false;
    }
    const PointTurn turn = placement_turn(placement);
    const BoxCorners corners = turn_box(&turn, child->bbox);
    if (frame->array_begun) {
        // Element (0, 0) gave its true extent, which can be smaller than the cached one.
        frame->array_begun = false;
        grow_by_block(walk, aref, &lattice, &corners, {0, 1, 1, aref->rows});
        grow_by_block(walk, aref, &lattice, &corners, {1, aref->cols, 0, aref->rows});
    } else {
        grow_by_block(walk, aref, &lattice, &corners, {0, aref->cols, 0, aref->rows});
    }
    return true;
}

static Box walk_leave(SizeWalk *walk) {
    SizeFrame *frame = &walk->frames[--walk->frame_count];
    GdsCell *cell = frame->cell;
    cell->bbox = box_place(frame->box, frame->placement, true);
    cell->bbox_valid = 1;
    cell->visiting = 0;
    cell->acyclic = frame->above_cycle ? 0 : 1;
    if (walk->frame_count > 0) {
        SizeFrame *parent = &walk->frames[walk->frame_count - 1];
        box_grow(&parent->box, frame->box);
        parent->above_cycle |= frame->above_cycle;
    }
    return frame->box;
}

static Box size_cell(SizeWalk *walk, GdsCell *cell, GdsPlacement placement) {
    if (cell->bbox_valid != 0) {
        return box_place(cell->bbox, placement, false);
    }
    walk_enter(walk, cell, placement);
    Box box = BOX_EMPTY;
    while (walk->frame_count > 0 && !platform_interrupted()) {
        SizeFrame *frame = &walk->frames[walk->frame_count - 1];
        if (frame->next_sref < frame->cell->sref_count) {
            size_sref(walk, frame, &frame->cell->srefs[frame->next_sref++]);
        } else if (frame->next_aref < frame->cell->aref_count) {
            if (size_aref(walk, frame, &frame->cell->arefs[frame->next_aref])) {
                ++walk->frames[walk->frame_count - 1].next_aref;
            }
        } else {
            box = walk_leave(walk);
        }
    }
    return box;
}

Box gds_cell_bbox(GdsCell *cell, GdsPlacement placement, i32 depth) {
    assert(cell != nullptr && cell->visiting == 0);
    static_cast<void>(depth);  // never limited
    SizeWalk walk = {};
    return size_cell(&walk, cell, placement);
}

i64 gds_size_cells(GdsDatabase *database) {
    assert(database != nullptr);
    SizeWalk walk = {};
    for (i32 i = 0; i < database->cell_count && !platform_interrupted(); ++i) {
        size_cell(&walk, &database->cells[i], GDS_PLACEMENT_IDENTITY);
    }
    return walk.steps;
}
