#include "sim/mask_hints.h"

#include <cassert>
#include <cstring>
#include <cwchar>

#include "gds/polygon_list.h"
#include "platform/owned.h"
#include "process/hints.h"

static constexpr i64 LAYERS = 65536;     // layer numbers are 16 bits
static constexpr i32 LAYERS_SHOWN = 20;  // of those that are there
static constexpr size_t LIST_ROOM = 1024;

// Polygons of each layer number.
struct LayerCounts {
    Owned<i64[]> counts;
};

static void add_cell(LayerCounts *layers, const GdsCell *cell) {
    for (i32 i = 0; i < cell->polygon_count; ++i) {
        ++layers->counts.get()[cell->polygons[i].layer];
    }
}

static LayerCounts count_layout(const GdsDatabase *layout) {
    LayerCounts layers = {memory_scratch_zeroed<i64>(LAYERS)};
    for (i32 i = 0; i < layout->cell_count; ++i) {
        add_cell(&layers, &layout->cells[i]);
    }
    return layers;
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
static LayerCounts count_cell(const GdsDatabase *layout, const GdsCell *top) {
    LayerCounts layers = {memory_scratch_zeroed<i64>(LAYERS)};
    CellQueue queue = {layout, memory_scratch_zeroed<u8>(layout->cell_count),
                       memory_scratch<i32>(layout->cell_count), 0};
    queue_add(&queue, top);
    while (queue.count > 0) {
        const GdsCell *cell = &layout->cells[queue.pending.get()[--queue.count]];
        add_cell(&layers, cell);
        for (i32 i = 0; i < cell->sref_count; ++i) {
            queue_add(&queue, cell->srefs[i].cell);
        }
        for (i32 i = 0; i < cell->aref_count; ++i) {
            queue_add(&queue, cell->arefs[i].cell);
        }
    }
    return layers;
}

// The extracted polygons that reach into the section itself, not only into its margin.
static LayerCounts count_section(const Stack *stack) {
    LayerCounts layers = {memory_scratch_zeroed<i64>(LAYERS)};
    const f32 margin = static_cast<f32>(stack->margin_cells) * stack->spacing;
    for (i32 i = 0; i < stack->polygons->count; ++i) {
        const FlatPolygon *polygon = &stack->polygons->items[i];
        const bool reaches = polygon->x_max > margin && polygon->x_min < margin + stack->width &&
                             polygon->y_max > margin && polygon->y_min < margin + stack->depth;
        layers.counts.get()[polygon->layer] += reaches ? 1 : 0;
    }
    return layers;
}

static bool has_layer(const LayerCounts *layers, i32 layer) {
    return layer >= 0 && layer < LAYERS && layers->counts.get()[layer] > 0;
}

// "layer 1 (4 polygons), 7 (1)" or "no polygon at all".
static void list_layers(const LayerCounts *layers, wchar_t list[LIST_ROOM]) {
    i32 count = 0;
    size_t length = 0;
    for (i32 layer = 0; layer < LAYERS; ++layer) {
        auto polygons = static_cast<long long>(layers->counts.get()[layer]);
        if (polygons > 0 && count++ < LAYERS_SHOWN) {
            const wchar_t *format = count > 1      ? L", %d (%lld)"
                                    : polygons > 1 ? L"layer %d (%lld polygons)"
                                                   : L"layer %d (%lld polygon)";
            const i32 added = std::swprintf(list + length, LIST_ROOM - length, format, layer, polygons);
            length += added > 0 ? static_cast<size_t>(added) : 0;
        }
    }
    if (count == 0) {
        std::wcscpy(list, L"no polygon at all");
    } else if (count > LAYERS_SHOWN) {
        std::swprintf(list + length, LIST_ROOM - length, L" and %d more", count - LAYERS_SHOWN);
    }
}

static void hint_layer(const ProcessStep *step, const wchar_t *place, const LayerCounts *layers,
                       const wchar_t *more) {
    wchar_t list[LIST_ROOM];
    list_layers(layers, list);
    hint_write(step->line_number, L"layer %d of -mask_id has no polygon in %ls%ls; there: %ls", step->mask_id,
               place, more, list);
}

// What is known of the layers.
struct Layers {
    LayerCounts layout, cell, section;
};

static void hint_step(const Stack *stack, const ProcessStep *step, const Layers *layers, bool inside) {
    if (!has_layer(&layers->layout, step->mask_id)) {
        hint_layer(step, L"the layout", &layers->layout, L"");
    } else if (!has_layer(&layers->cell, step->mask_id)) {
        hint_layer(step, L"the cell", &layers->cell, L"");
    } else if (inside && !has_layer(&layers->section, step->mask_id)) {
        const bool skipped = stack->polygons->skipped > 0;
        hint_layer(step, L"the section", &layers->section,
                   skipped ? L" that is as wide as the grid's spacing" : L"");
    }
}

static bool is_mask_empty(const ProcessStep *step, const LayerCounts *section) {
    return step->kind == STEP_PHOTO && !has_layer(section, step->mask_id);
}

void mask_hints(const Stack *stack, const GdsDatabase *layout, const GdsCell *cell, bool inside) {
    assert(stack->polygons != nullptr && stack->steps != nullptr && layout != nullptr && cell != nullptr);
    Layers layers = {};
    layers.section = count_section(stack);
    for (i32 i = 0; i < stack->steps->count; ++i) {
        const ProcessStep *step = stack->steps->items[i];
        if (!is_mask_empty(step, &layers.section)) {
            continue;
        }
        if (layers.layout.counts == nullptr) {
            layers.layout = count_layout(layout);
            layers.cell = count_cell(layout, cell);
        }
        hint_step(stack, step, &layers, inside);
    }
}
