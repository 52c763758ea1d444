// The hierarchy is walked with a stack of its own on the heap, since files may nest deeper than the machine's
// stack allows. A cell is counted once, when all cells below it are.
#include "gds/gds_cell_pairs.h"

#include <cassert>

#include "gds/gds_hierarchy.h"
#include "gds/gds_lattice.h"
#include "log/log.h"
#include "log/shown_text.h"
#include "platform/platform.h"

enum CellState : u8 { CELL_NEW = 0, CELL_OPEN, CELL_DONE };

// A cell whose references are being looked at.
struct PairFrame {
    i32 cell;
    i32 next_sref, next_aref;
};

struct PairWalk {
    const GdsDatabase *database;
    GdsPairList *lists;
    Owned<u8[]> states;  // CellState of each cell
    Owned<PairFrame[]> frames;
    i32 frame_count, frame_capacity;
    i64 steps;  // of sizing arrays
    i64 total;  // items of the lists that are done
};

static i32 number_of(const PairWalk *walk, const GdsCell *cell) {
    return static_cast<i32>(cell - walk->database->cells);
}

static void walk_enter(PairWalk *walk, i32 cell) {
    walk->states[cell] = CELL_OPEN;
    gds_pairs_add_cell(&walk->lists[cell], &walk->database->cells[cell]);
    array_append(&walk->frames, &walk->frame_count, &walk->frame_capacity, PairFrame{cell, 0, 0}, 64);
}

// Whether the child's polygons can be added. When they are yet to be counted the child is entered.
enum ChildState { CHILD_READY, CHILD_ENTERED, CHILD_NOTHING };

static ChildState child_state(PairWalk *walk, const GdsCell *child) {
    if (child == nullptr) {
        return CHILD_NOTHING;
    }
    const i32 number = number_of(walk, child);
    switch (walk->states[number]) {
        case CELL_DONE: return CHILD_READY;
        case CELL_OPEN: return CHILD_NOTHING;
        default: walk_enter(walk, number); return CHILD_ENTERED;
    }
}

static void add_sref(GdsPairList *list, const GdsSRef *sref, const GdsPairList *child) {
    const PointTurn identity = placement_turn(GDS_PLACEMENT_IDENTITY);
    const GdsPlacement placement =
        placement_child(&identity, GDS_PLACEMENT_IDENTITY, sref->origin, sref->mag, sref->angle, sref->flags);
    const PointTurn turn = placement_turn(placement);
    for (i32 i = 0; i < child->count; ++i) {
        GdsPair pair = child->items[i];
        pair.box = placed_box(&turn, placement.origin, pair.box);
        gds_pairs_add(list, &pair);
    }
}

static void add_aref(GdsPairList *list, const GdsARef *aref, const GdsPairList *child, i64 *steps) {
    if (aref->cols <= 0 || aref->rows <= 0) {
        return;
    }
    const PointTurn identity = placement_turn(GDS_PLACEMENT_IDENTITY);
    const Lattice lattice = lattice_create(aref, &identity, {0, 0});
    const GdsPlacement element =
        placement_child(&identity, GDS_PLACEMENT_IDENTITY, aref->p1, aref->mag, aref->angle, aref->flags);
    const PointTurn turn = placement_turn(element);
    for (i32 i = 0; i < child->count; ++i) {
        GdsPair pair = child->items[i];
        const BoxCorners corners = turn_box(&turn, pair.box);
        pair.count = gds_count_times(pair.count, i64{aref->cols} * aref->rows);
        pair.box = BOX_EMPTY;
        // Where the extents of cells are too wide already, which has been told, these may be too.
        lattice_grow_box(&lattice, &corners, {0, aref->cols, 0, aref->rows}, &pair.box, steps,
                         GDS_SIZE_STEP_LIMIT);
        gds_pairs_add(list, &pair);
    }
}

// The next reference of the frame on top; false when it has no more.
static bool walk_reference(PairWalk *walk) {
    PairFrame *frame = &walk->frames[walk->frame_count - 1];
    const GdsCell *cell = &walk->database->cells[frame->cell];
    GdsPairList *list = &walk->lists[frame->cell];
    if (frame->next_sref < cell->sref_count) {
        const GdsSRef *sref = &cell->srefs[frame->next_sref];
        const ChildState state = child_state(walk, sref->cell);
        if (state == CHILD_ENTERED) {
            return true;  // comes back to the same reference
        }
        if (state == CHILD_READY) {
            add_sref(list, sref, &walk->lists[number_of(walk, sref->cell)]);
        }
        ++frame->next_sref;
        return true;
    }
    if (frame->next_aref < cell->aref_count) {
        const GdsARef *aref = &cell->arefs[frame->next_aref];
        const ChildState state = child_state(walk, aref->cell);
        if (state == CHILD_ENTERED) {
            return true;
        }
        if (state == CHILD_READY) {
            add_aref(list, aref, &walk->lists[number_of(walk, aref->cell)], &walk->steps);
        }
        ++frame->next_aref;
        return true;
    }
    return false;
}

static bool is_over_limit(const PairWalk *walk) {
    const PairFrame *frame = &walk->frames[walk->frame_count - 1];
    if (walk->total + walk->lists[frame->cell].count <= GDS_CELL_PAIRS_LIMIT) {
        return false;
    }
    diagnostic_write(
        L"the cells have more than %lld pairs of layer and datatype in all, the limit; it was "
        L"reached in cell \"%ls\"",
        static_cast<long long>(GDS_CELL_PAIRS_LIMIT),
        shown_text(nstring_text(walk->database->cells[frame->cell].name)).text);
    return true;
}

static void walk_leave(PairWalk *walk) {
    const i32 cell = walk->frames[--walk->frame_count].cell;
    gds_pairs_sort(&walk->lists[cell]);
    walk->states[cell] = CELL_DONE;
    walk->total += walk->lists[cell].count;
}

static GdsCellPairsResult count_from(PairWalk *walk, i32 cell) {
    if (walk->states[cell] != CELL_NEW) {
        return GDS_CELL_PAIRS_DONE;
    }
    walk_enter(walk, cell);
    while (walk->frame_count > 0) {
        if (platform_interrupted()) {
            return GDS_CELL_PAIRS_INTERRUPTED;
        }
        if (is_over_limit(walk)) {
            return GDS_CELL_PAIRS_MANY;
        }
        if (!walk_reference(walk)) {
            walk_leave(walk);
        }
    }
    return GDS_CELL_PAIRS_DONE;
}

static void mark_used(const GdsDatabase *database, u8 *used) {
    for (i32 i = 0; i < database->cell_count; ++i) {
        const GdsCell *cell = &database->cells[i];
        for (i32 k = 0; k < cell->sref_count; ++k) {
            if (cell->srefs[k].cell != nullptr) {
                used[cell->srefs[k].cell - database->cells] = 1;
            }
        }
        for (i32 k = 0; k < cell->aref_count; ++k) {
            if (cell->arefs[k].cell != nullptr) {
                used[cell->arefs[k].cell - database->cells] = 1;
            }
        }
    }
}

GdsCellPairsResult gds_cell_pairs_count(const GdsDatabase *database, const GdsCell *cell,
                                        GdsCellPairs *pairs) {
    assert(database != nullptr && pairs != nullptr && pairs->lists == nullptr && pairs->used == nullptr);
    pairs->cell_count = database->cell_count;
    pairs->lists = memory_new_zeroed<GdsPairList>(database->cell_count);
    pairs->used = memory_new_zeroed<u8>(database->cell_count);
    mark_used(database, pairs->used);
    PairWalk walk = {};
    walk.database = database;
    walk.lists = pairs->lists;
    walk.states = memory_scratch_zeroed<u8>(database->cell_count);
    if (cell != nullptr) {
        return count_from(&walk, number_of(&walk, cell));
    }
    GdsCellPairsResult result = GDS_CELL_PAIRS_DONE;
    for (i32 i = 0; i < database->cell_count && result == GDS_CELL_PAIRS_DONE; ++i) {
        result = count_from(&walk, i);
    }
    return result;
}

void gds_cell_pairs_free(GdsCellPairs *pairs) {
    assert(pairs != nullptr);
    for (i32 i = 0; i < pairs->cell_count && pairs->lists != nullptr; ++i) {
        gds_pairs_free(&pairs->lists[i]);
    }
    memory_free(pairs->lists);
    memory_free(pairs->used);
    *pairs = GdsCellPairs{};
}
