// The extent of cells. The hierarchy is walked with a stack of its own on the heap, since files may
// nest deeper than the machine's stack allows.
#include "gds/gds_hierarchy.h"

#include <cassert>

#include "gds/gds_lattice.h"
#include "platform/owned.h"
#include "platform/platform.h"

// A cell being sized.
struct SizeFrame {
    GdsCell *cell;
    GdsPlacement placement;
    PointTurn turn;
    Box box;  // found so far, in the coordinates of the placement's parent
    i32 next_sref, next_aref;
    bool array_begun;  // element (0, 0) of the next AREF has been sized on its own
};

struct SizeWalk {
    Owned<SizeFrame[]> frames;
    i32 frame_count, frame_capacity;
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

static void size_sref(SizeWalk *walk, SizeFrame *frame, const GdsSRef *sref) {
    GdsCell *child = sref->cell;
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
        lattice_grow_box(&lattice, &corners, {0, 1, 1, aref->rows}, &frame->box);
        lattice_grow_box(&lattice, &corners, {1, aref->cols, 0, aref->rows}, &frame->box);
    } else {
        lattice_grow_box(&lattice, &corners, {0, aref->cols, 0, aref->rows}, &frame->box);
    }
    return true;
}

static Box walk_leave(SizeWalk *walk) {
    SizeFrame *frame = &walk->frames[--walk->frame_count];
    GdsCell *cell = frame->cell;
    cell->bbox = box_place(frame->box, frame->placement, true);
    cell->bbox_valid = 1;
    cell->visiting = 0;
    if (walk->frame_count > 0) {
        box_grow(&walk->frames[walk->frame_count - 1].box, frame->box);
    }
    return frame->box;
}

Box gds_cell_bbox(GdsCell *cell, GdsPlacement placement, i32 depth) {
    assert(cell != nullptr && cell->visiting == 0);
    static_cast<void>(depth);  // never limited
    if (cell->bbox_valid != 0) {
        return box_place(cell->bbox, placement, false);
    }
    SizeWalk walk = {};
    walk_enter(&walk, cell, placement);
    Box box = BOX_EMPTY;
    while (walk.frame_count > 0 && !platform_interrupted()) {
        SizeFrame *frame = &walk.frames[walk.frame_count - 1];
        if (frame->next_sref < frame->cell->sref_count) {
            size_sref(&walk, frame, &frame->cell->srefs[frame->next_sref++]);
        } else if (frame->next_aref < frame->cell->aref_count) {
            if (size_aref(&walk, frame, &frame->cell->arefs[frame->next_aref])) {
                ++walk.frames[walk.frame_count - 1].next_aref;
            }
        } else {
            box = walk_leave(&walk);
        }
    }
    return box;
}

void gds_size_cells(GdsDatabase *database) {
    assert(database != nullptr);
    for (i32 i = 0; i < database->cell_count && !platform_interrupted(); ++i) {
        gds_cell_bbox(&database->cells[i], GDS_PLACEMENT_IDENTITY, 0);
    }
}
