#include "gds/gds_overview.h"

#include <cassert>
#include <cstring>

#include "log/log.h"
#include "log/shown_text.h"
#include "log/text.h"

static constexpr i32 CELLS_TOLD = 20;
static constexpr i32 LAYERS_TOLD = 40;
static constexpr i32 LAYER_COUNT = 65536;

// A walk over the cells below one, each visited once.
struct CellWalk {
    const GdsDatabase *database;
    u8 *visited;  // per cell
    i32 *open;    // cells still to be looked at
    i32 open_count;
    u8 *layers;  // 1 for each layer met
};

static void walk_open(CellWalk *walk, const GdsCell *cell) {
    if (cell == nullptr) {
        return;
    }
    const i64 index = cell - walk->database->cells;
    if (walk->visited[index] == 0) {
        walk->visited[index] = 1;
        walk->open[walk->open_count++] = static_cast<i32>(index);
    }
}

static void walk_references(CellWalk *walk, const GdsCell *cell) {
    for (i32 i = 0; i < cell->sref_count; ++i) {
        walk_open(walk, cell->srefs[i].cell);
    }
    for (i32 i = 0; i < cell->aref_count; ++i) {
        walk_open(walk, cell->arefs[i].cell);
    }
}

static void walk_layers(CellWalk *walk, const GdsCell *top) {
    std::memset(walk->visited, 0, static_cast<size_t>(walk->database->cell_count));
    std::memset(walk->layers, 0, LAYER_COUNT);
    walk_open(walk, top);
    while (walk->open_count > 0) {
        const GdsCell *cell = &walk->database->cells[walk->open[--walk->open_count]];
        for (i32 i = 0; i < cell->polygon_count; ++i) {
            walk->layers[cell->polygons[i].layer] = 1;
        }
        walk_references(walk, cell);
    }
}

// "layers 1, 2, 3 and 5 more".
static Owned<WString> layers_text(const u8 *layers) {
    Owned<WString> text(wstring_copy(L""));
    i32 count = 0;
    for (i32 layer = 0; layer < LAYER_COUNT; ++layer) {
        if (layers[layer] != 0 && count++ < LAYERS_TOLD) {
            const wchar_t *before = count == 1 ? L"layers " : L", ";
            text.reset(wstring_make(L"%ls%ls%d", wstring_text(text.get()), before, layer));
        }
    }
    if (count == 0) {
        text.reset(wstring_copy(L"no polygons"));
    }
    if (count > LAYERS_TOLD) {
        text.reset(wstring_make(L"%ls and %d more", wstring_text(text.get()), count - LAYERS_TOLD));
    }
    return text;
}

static void tell_cell(CellWalk *walk, const GdsCell *cell) {
    walk_layers(walk, cell);
    const Owned<WString> layers = layers_text(walk->layers);
    const f64 unit = walk->database->unit;
    diagnostic_write(L"cell \"%ls\" reaches from (%.9g, %.9g) um to (%.9g, %.9g) um; %ls",
                     shown_text(nstring_text(cell->name)).text, cell->bbox.x_min * unit,
                     cell->bbox.y_min * unit, cell->bbox.x_max * unit, cell->bbox.y_max * unit,
                     wstring_text(layers.get()));
}

void gds_overview(const GdsDatabase *database) {
    assert(database != nullptr);
    const i32 count = database->cell_count;
    const auto visited = memory_scratch_zeroed<u8>(count);
    const auto open = memory_scratch<i32>(count);
    const auto layers = memory_scratch<u8>(LAYER_COUNT);
    const auto used = memory_scratch<u8>(count);
    CellWalk walk = {database, visited.get(), open.get(), 0, layers.get()};
    for (i32 i = 0; i < count; ++i) {
        walk_references(&walk, &database->cells[i]);
        walk.open_count = 0;  // only what is referred to matters here
    }
    std::memcpy(used.get(), visited.get(), static_cast<size_t>(count));
    diagnostic_write(L"a database unit is %.9g um", database->unit);
    i32 tops = 0;
    for (i32 i = 0; i < count; ++i) {
        if (used[i] == 0 && tops++ < CELLS_TOLD) {
            tell_cell(&walk, &database->cells[i]);
        }
    }
    if (tops > CELLS_TOLD) {
        diagnostic_write(L"and %d more cells that no other one refers to", tops - CELLS_TOLD);
    }
}
