#include "gds/gds_database.h"

#include <cassert>

void gds_cell_clear(GdsCell *cell) {
    assert(cell != nullptr);
    for (i32 i = 0; i < cell->polygon_count; ++i) {
        memory_free(cell->polygons[i].points);
    }
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
