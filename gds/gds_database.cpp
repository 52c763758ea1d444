#include "gds/gds_database.h"

#include <cassert>
#include <cstring>

Point *gds_add_points(GdsDatabase *database, i64 count) {
    assert(database != nullptr && count >= 0);
    return static_cast<Point *>(gds_store_take(&database->store, count * static_cast<i64>(sizeof(Point))));
}

NString *gds_add_name(GdsDatabase *database, const char *text, i64 length) {
    assert(database != nullptr && text != nullptr && length >= 0);
    const i64 size = static_cast<i64>(sizeof(NString)) + length + 1;
    auto *name = static_cast<NString *>(gds_store_take(&database->store, size));
    name->text = reinterpret_cast<char *>(name + 1);
    name->count = static_cast<u64>(length);
    std::memcpy(name->text, text, static_cast<size_t>(length));
    name->text[length] = 0;
    return name;
}

template <typename T>
static void list_free(T *items, i32 capacity) {
    if (capacity > 0) {
        memory_free(items);
    }
}

void gds_cell_clear(GdsCell *cell) {
    assert(cell != nullptr);
    list_free(cell->polygons, cell->polygon_capacity);
    list_free(cell->srefs, cell->sref_capacity);
    list_free(cell->arefs, cell->aref_capacity);
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
    gds_store_clear(&database->store);
    memory_free(database);
}
