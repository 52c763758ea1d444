#include "sim/mask_hints.h"

#include <cassert>
#include <cwchar>

#include "gds/polygon_list.h"
#include "platform/owned.h"
#include "process/hints.h"

static constexpr i32 MASKS_SHOWN = 20;  // of those that are there
static constexpr size_t LIST_ROOM = 1024;

// What a step takes for its mask: a layer, or one datatype of it.
static bool has_mask(const GdsPairList *pairs, const ProcessStep *step) {
    if (step->one_datatype) {
        return gds_pairs_find(pairs, step->mask_id, step->mask_datatype) != nullptr;
    }
    for (i32 i = 0; i < pairs->count; ++i) {
        if (pairs->items[i].layer == step->mask_id) {
            return true;
        }
    }
    return false;
}

static void count_layout(GdsPairList *pairs, const GdsDatabase *layout) {
    for (i32 i = 0; i < layout->cell_count; ++i) {
        gds_pairs_add_cell(pairs, &layout->cells[i]);
    }
    gds_pairs_sort(pairs);
}

// Cells that wait to be looked at, each at most once.
struct CellQueue {
    const GdsDatabase *layout;
    Owned<u8[]> met;       // one flag a cell
    Owned<i32[]> pending;  // room for every cell
    i32 count;
};

static void queue_add(CellQueue *queue, const GdsCell *cell) {
    if (cell == nullptr) {
        return;
    }
    const i64 index = cell - queue->layout->cells;
    if (queue->met.get()[index] == 0) {
        queue->met.get()[index] = 1;
        queue->pending.get()[queue->count++] = static_cast<i32>(index);
    }
}

// The polygons as they stand in the cell and in all cells below it, each cell once, however often it is
// placed.
static void count_cell(GdsPairList *pairs, const GdsDatabase *layout, const GdsCell *top) {
    CellQueue queue = {layout, memory_scratch_zeroed<u8>(layout->cell_count),
                       memory_scratch<i32>(layout->cell_count), 0};
    queue_add(&queue, top);
    while (queue.count > 0) {
        const GdsCell *cell = &layout->cells[queue.pending.get()[--queue.count]];
        gds_pairs_add_cell(pairs, cell);
        for (i32 i = 0; i < cell->sref_count; ++i) {
            queue_add(&queue, cell->srefs[i].cell);
        }
        for (i32 i = 0; i < cell->aref_count; ++i) {
            queue_add(&queue, cell->arefs[i].cell);
        }
    }
    gds_pairs_sort(pairs);
}

bool mask_cell_is_empty(const GdsDatabase *layout, const GdsCell *cell) {
    assert(layout != nullptr && cell != nullptr);
    GdsPairList pairs = {};
    count_cell(&pairs, layout, cell);
    const bool is_empty = pairs.count == 0;
    gds_pairs_free(&pairs);
    return is_empty;
}

void mask_count_section(const Stack *stack, GdsPairList *pairs) {
    assert(stack != nullptr && stack->polygons != nullptr && pairs != nullptr);
    const f32 margin = static_cast<f32>(stack->margin_cells) * stack->spacing;
    for (i32 i = 0; i < stack->polygons->count; ++i) {
        const FlatPolygon *polygon = &stack->polygons->items[i];
        if (polygon->x_max > margin && polygon->x_min < margin + stack->width && polygon->y_max > margin &&
            polygon->y_min < margin + stack->depth) {
            const GdsPair pair = {polygon->layer, polygon->datatype, 1, BOX_EMPTY};
            gds_pairs_add(pairs, &pair);
        }
    }
    gds_pairs_sort(pairs);
}

// A list of masks in the making: "layer 1 (4 polygons), 7 (1)" or "layer/datatype 1/0 (4 polygons), 7/5 (1)".
struct MaskList {
    wchar_t text[LIST_ROOM];
    size_t length;
    i32 count;
};

static void list_mask(MaskList *list, bool with_datatype, const GdsPair *pair, i64 polygons) {
    if (list->count++ >= MASKS_SHOWN) {
        return;
    }
    wchar_t name[16];
    const wchar_t *form = with_datatype ? L"%d/%d" : L"%d";
    std::swprintf(name, 16, form, pair->layer, pair->datatype);
    const wchar_t *before = list->count > 1 ? L", " : with_datatype ? L"layer/datatype " : L"layer ";
    const wchar_t *unit = list->count > 1 ? L"" : polygons > 1 ? L" polygons" : L" polygon";
    const i32 added = std::swprintf(list->text + list->length, LIST_ROOM - list->length, L"%ls%ls (%lld%ls)",
                                    before, name, static_cast<long long>(polygons), unit);
    list->length += added > 0 ? static_cast<size_t>(added) : 0;
}

static void list_masks(const GdsPairList *pairs, bool with_datatype, MaskList *list) {
    *list = MaskList{};
    for (i32 i = 0; i < pairs->count; ++i) {
        const GdsPair *pair = &pairs->items[i];
        i64 polygons = pair->count;
        while (!with_datatype && i + 1 < pairs->count && pairs->items[i + 1].layer == pair->layer) {
            polygons = gds_count_add(polygons, pairs->items[++i].count);
        }
        list_mask(list, with_datatype, pair, polygons);
    }
    if (list->count == 0) {
        std::wcscpy(list->text, L"no polygon at all");
    } else if (list->count > MASKS_SHOWN) {
        std::swprintf(list->text + list->length, LIST_ROOM - list->length, L" and %d more",
                      list->count - MASKS_SHOWN);
    }
}

static void hint_mask(const ProcessStep *step, const wchar_t *place, const GdsPairList *pairs,
                      const wchar_t *more) {
    MaskList list;
    list_masks(pairs, step->one_datatype, &list);
    if (step->one_datatype) {
        hint_write(step->line_number,
                   L"layer %d of -mask_id with datatype %d of -datatype has no polygon in %ls%ls; there: %ls",
                   step->mask_id, step->mask_datatype, place, more, list.text);
    } else {
        hint_write(step->line_number, L"layer %d of -mask_id has no polygon in %ls%ls; there: %ls",
                   step->mask_id, place, more, list.text);
    }
}

// What is known of the layout's polygons.
struct Masks {
    GdsPairList layout, cell, section;
};

template <>
struct Freed<Masks> {
    void operator()(Masks *masks) const {
        gds_pairs_free(&masks->layout);
        gds_pairs_free(&masks->cell);
        gds_pairs_free(&masks->section);
    }
};

static void hint_step(const Stack *stack, const ProcessStep *step, const Masks *masks, bool inside) {
    if (!has_mask(&masks->layout, step)) {
        hint_mask(step, L"the layout", &masks->layout, L"");
    } else if (!has_mask(&masks->cell, step)) {
        hint_mask(step, L"the cell", &masks->cell, L"");
    } else if (inside && !has_mask(&masks->section, step)) {
        const bool skipped = stack->polygons->skipped > 0;
        hint_mask(step, L"the section", &masks->section,
                  skipped ? L" that is as wide as the grid's spacing" : L"");
    }
}

void mask_hints(const Stack *stack, const GdsDatabase *layout, const GdsCell *cell, bool inside) {
    assert(stack->polygons != nullptr && stack->steps != nullptr && layout != nullptr && cell != nullptr);
    Masks masks = {};
    const Owned<Masks> owner(&masks);
    mask_count_section(stack, &masks.section);
    bool counted = false;
    for (i32 i = 0; i < stack->steps->count; ++i) {
        const ProcessStep *step = stack->steps->items[i];
        if (step->kind != STEP_PHOTO || has_mask(&masks.section, step)) {
            continue;
        }
        if (!counted) {
            count_layout(&masks.layout, layout);
            count_cell(&masks.cell, layout, cell);
            counted = true;
        }
        hint_step(stack, step, &masks, inside);
    }
}
