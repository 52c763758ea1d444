#include "gds/gds_database.h"

#include <cassert>

static_assert(sizeof(GdsBlock) % alignof(Point) == 0, "points lie right behind the record of their block");

Point *gds_cell_add_points(GdsCell *cell, i64 count) {
    assert(cell != nullptr && count >= 0);
    const i64 size = static_cast<i64>(sizeof(GdsBlock)) + count * static_cast<i64>(sizeof(Point));
    auto *block = static_cast<GdsBlock *>(memory_allocate(size, 1));
    block->next = cell->point_blocks;
    cell->point_blocks = block;
    return reinterpret_cast<Point *>(block + 1);
}

static void blocks_free(GdsBlock *first) {
    while (first != nullptr) {
        GdsBlock *next = first->next;
        memory_free(first);
        first = next;
    }
}

void gds_cell_clear(GdsCell *cell) {
    assert(cell != nullptr);
    blocks_free(cell->point_blocks);
    memory_free(cell->polygons);
    for (i32 i = 0; i < cell->sref_count; ++i) {
        nstring_free(cell->srefs[i].name);
    }
    memory_free(cell->srefs);
    for (i32 i = 0; i < cell->aref_count; ++i) {
        nstring_free(cell->arefs[i].name);
    }
    memory_free(cell->arefs);
    nstring_free(cell->name);
    *cell = GdsCell{};
}

void gds_free(GdsDatabase *database) {
    if (database == nullptr) {
        return;
    }
    for (i32 i = 0; i < database->cell_count; ++i) {
        gds_cell_clear(&database->cells[i]);
    }
    memory_free(database->cells);
    memory_free(database);
}
