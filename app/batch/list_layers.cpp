#include "app/batch/list_layers.h"

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <cstring>

#include "app/batch/batch_output.h"
#include "app/batch/named_cell.h"
#include "gds/gds_cell_pairs.h"
#include "platform/platform.h"

static constexpr i32 COLUMNS = 6;  // arguments, polygons, and the four sides
static constexpr size_t COLUMN_ROOM = 48;

// The words of one line.
struct PairLine {
    char columns[COLUMNS][COLUMN_ROOM];
};

static void print_number(char column[COLUMN_ROOM], i32 database_units, f64 unit) {
    std::snprintf(column, COLUMN_ROOM, "%.9g", database_units * unit);
}

static PairLine pair_line(const GdsPair *pair, f64 unit) {
    PairLine line;
    std::snprintf(line.columns[0], COLUMN_ROOM, "-mask_id %d -datatype %d", pair->layer, pair->datatype);
    const bool most = pair->count == I64_MAX;  // where counting has ended
    std::snprintf(line.columns[1], COLUMN_ROOM, "%s%lld", most ? ">= " : "",
                  static_cast<long long>(pair->count));
    print_number(line.columns[2], pair->box.x_min, unit);
    print_number(line.columns[3], pair->box.y_min, unit);
    print_number(line.columns[4], pair->box.x_max, unit);
    print_number(line.columns[5], pair->box.y_max, unit);
    return line;
}

static void list_pairs(const GdsPairList *list, f64 unit) {
    i32 widths[COLUMNS] = {};
    for (i32 i = 0; i < list->count; ++i) {
        const PairLine line = pair_line(&list->items[i], unit);
        for (i32 k = 0; k < COLUMNS; ++k) {
            widths[k] = std::max(widths[k], static_cast<i32>(std::strlen(line.columns[k])));
        }
    }
    for (i32 i = 0; i < list->count && !platform_interrupted(); ++i) {
        const PairLine line = pair_line(&list->items[i], unit);
        batch_output_printf("  %-*s  %*s polygon%s  (%*s, %*s) to (%*s, %*s)\n", widths[0], line.columns[0],
                            widths[1], line.columns[1], list->items[i].count == 1 ? " " : "s", widths[2],
                            line.columns[2], widths[3], line.columns[3], widths[4], line.columns[4],
                            widths[5], line.columns[5]);
    }
}

static void list_cell(const GdsDatabase *layout, const GdsCellPairs *pairs, i32 number) {
    const GdsPairList *list = &pairs->lists[number];
    batch_output_printf("cell \"%s\"%s%s\n", nstring_text(layout->cells[number].name),
                        pairs->used[number] == 0 ? ", top cell" : "",
                        list->count == 0 ? ": no polygons" : "");
    list_pairs(list, layout->unit);
}

BatchStatus list_layers(const GdsDatabase *layout, const char *cell_name) {
    assert(layout != nullptr);
    const GdsCell *cell = nullptr;
    if (cell_name != nullptr) {
        cell = named_cell_find(layout, cell_name);
        if (cell == nullptr) {
            return BATCH_PROCESS_FAILED;
        }
    }
    GdsCellPairs pairs = {};
    const Owned<GdsCellPairs> owner(&pairs);
    switch (gds_cell_pairs_count(layout, cell, &pairs)) {
        case GDS_CELL_PAIRS_MANY: return BATCH_LAYOUT_FAILED;
        case GDS_CELL_PAIRS_INTERRUPTED: return BATCH_INTERRUPTED;
        case GDS_CELL_PAIRS_DONE: break;
    }
    batch_output_printf("Layers and datatypes of cells with all that they refer to; lengths in um\n");
    for (i32 i = 0; i < layout->cell_count && !platform_interrupted(); ++i) {
        if (cell == nullptr || cell == &layout->cells[i]) {
            list_cell(layout, &pairs, i);
        }
    }
    return platform_interrupted() ? BATCH_INTERRUPTED : BATCH_DONE;
}
