#include "gds/gds_database.h"

#include <cassert>

Point *gds_cell_add_points(GdsCell *cell, i64 count) {
    assert(cell != nullptr && count >= 0);
    return static_cast<Point *>(gds_block_add(&cell->point_blocks, count * static_cast<i64>(sizeof(Point))));
}

void gds_cell_clear(GdsCell *cell) {
    assert(cell != nullptr);
    gds_blocks_free(&cell->point_blocks);
    memory_free(cell->polygons);
    memory_free(cell->srefs);
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
    gds_names_clear(&database->names);
    memory_free(database);
}
