#include "gds/gds_resolve.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "platform/platform.h"

// Gives each name that a reference has the first cell of that name.
static void find_cells(GdsDatabase *database) {
    const GdsNames *names = &database->names;
    for (i64 i = 0; i < names->slot_count; ++i) {
        if (names->slots[i] != nullptr) {
            names->slots[i]->cell = -1;
        }
    }
    for (i32 i = 0; i < database->cell_count && !platform_interrupted(); ++i) {
        const NString *own = database->cells[i].name;
        GdsName *name =
            own != nullptr ? gds_names_find(names, own->text, static_cast<i64>(own->count)) : nullptr;
        if (name != nullptr && name->cell < 0) {
            name->cell = i;
        }
    }
}

// False when the name, which may be null, is that of no cell.
static bool bind(const GdsDatabase *database, const GdsName *name, GdsCell **cell) {
    if (*cell == nullptr && name != nullptr && name->cell >= 0 && !platform_interrupted()) {
        *cell = &database->cells[name->cell];
    }
    return *cell != nullptr;
}

i32 gds_resolve_refs(GdsDatabase *database) {
    assert(database != nullptr);
    find_cells(database);
    bool all_bound = true;
    for (i32 i = 0; i < database->cell_count; ++i) {
        GdsCell *cell = &database->cells[i];
        for (i32 k = 0; k < cell->sref_count; ++k) {
            all_bound &= bind(database, cell->srefs[k].name, &cell->srefs[k].cell);
        }
        for (i32 k = 0; k < cell->aref_count; ++k) {
            all_bound &= bind(database, cell->arefs[k].name, &cell->arefs[k].cell);
        }
    }
    return all_bound ? 0 : 1;
}

// The references of the table turned round: the parents of cell i are parents[first[i]] up to
// parents[first[i + 1]], a parent once for each reference.
struct ParentTable {
    Owned<i64[]> first;
    Owned<i32[]> parents;
};

template <typename Visit>
static void each_reference(const GdsDatabase *database, Visit visit) {
    for (i32 i = 0; i < database->cell_count; ++i) {
        const GdsCell *cell = &database->cells[i];
        for (i32 k = 0; k < cell->sref_count; ++k) {
            if (cell->srefs[k].cell != nullptr) {
                visit(i, cell->srefs[k].cell - database->cells);
            }
        }
        for (i32 k = 0; k < cell->aref_count; ++k) {
            if (cell->arefs[k].cell != nullptr) {
                visit(i, cell->arefs[k].cell - database->cells);
            }
        }
    }
}

static ParentTable parents_create(const GdsDatabase *database) {
    const i64 cell_count = database->cell_count;
    ParentTable table;
    table.first = memory_scratch_zeroed<i64>(cell_count + 1);
    each_reference(database, [&table](i32, i64 child) { ++table.first[child + 1]; });
    for (i64 i = 0; i < cell_count; ++i) {
        table.first[i + 1] += table.first[i];
    }
    table.parents = memory_scratch<i32>(table.first[cell_count]);
    const auto next = memory_scratch<i64>(cell_count);
    std::copy(table.first.get(), table.first.get() + cell_count, next.get());
    each_reference(database,
                   [&table, &next](i32 parent, i64 child) { table.parents[next[child]++] = parent; });
    return table;
}

void gds_mark_bare(GdsDatabase *database) {
    assert(database != nullptr);
    const ParentTable table = parents_create(database);
    const auto pending = memory_scratch<i32>(database->cell_count);
    i32 pending_count = 0;
    for (i32 i = 0; i < database->cell_count; ++i) {
        database->cells[i].bare = database->cells[i].polygon_count == 0 ? 1 : 0;
        if (database->cells[i].bare == 0) {
            pending[pending_count++] = i;
        }
    }
    while (pending_count > 0) {
        const i32 cell = pending[--pending_count];
        for (i64 k = table.first[cell]; k < table.first[cell + 1]; ++k) {
            GdsCell *parent = &database->cells[table.parents[k]];
            if (parent->bare != 0) {
                parent->bare = 0;
                pending[pending_count++] = table.parents[k];
            }
        }
    }
}
