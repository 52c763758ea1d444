#include "gds/gds_resolve.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "platform/platform.h"

// The cells by name: open addressing, a cell number per slot or -1.
struct NameIndex {
    Owned<i32[]> slots;
    u64 mask;  // number of slots - 1, a power of two less one
};

// FNV-1a (Fowler, Noll, Vo).
static u64 name_hash(const NString *name) {
    u64 hash = 14695981039346656037U;
    for (u64 i = 0; i < name->count; ++i) {
        hash = (hash ^ static_cast<u8>(name->text[i])) * 1099511628211U;
    }
    return hash ^ (hash >> 32);
}

static bool names_equal(const NString *a, const NString *b) {
    return a->count == b->count && std::memcmp(a->text, b->text, a->count) == 0;
}

// The slot of the cell of that name, or the free one where it belongs.
static i32 *index_slot(const NameIndex *index, const GdsDatabase *database, const NString *name) {
    u64 at = name_hash(name) & index->mask;
    while (index->slots[at] >= 0 && !names_equal(database->cells[index->slots[at]].name, name)) {
        at = (at + 1) & index->mask;
    }
    return &index->slots[at];
}

static NameIndex index_create(const GdsDatabase *database) {
    u64 slot_count = 16;
    while (slot_count < static_cast<u64>(database->cell_count) * 2) {
        slot_count *= 2;
    }
    NameIndex index = {memory_scratch<i32>(static_cast<i64>(slot_count)), slot_count - 1};
    std::memset(index.slots.get(), 0xFF, slot_count * sizeof(i32));
    for (i32 i = 0; i < database->cell_count && !platform_interrupted(); ++i) {
        if (database->cells[i].name != nullptr) {
            i32 *slot = index_slot(&index, database, database->cells[i].name);
            if (*slot < 0) {
                *slot = i;  // the first of several equal names wins
            }
        }
    }
    return index;
}

// False when the name, which may be null, is that of no cell.
static bool bind(const GdsDatabase *database, const NameIndex *index, const NString *name, GdsCell **cell) {
    if (*cell == nullptr && name != nullptr && !platform_interrupted()) {
        const i32 found = *index_slot(index, database, name);
        *cell = found >= 0 ? &database->cells[found] : nullptr;
    }
    return *cell != nullptr;
}

i32 gds_resolve_refs(GdsDatabase *database) {
    assert(database != nullptr);
    const NameIndex index = index_create(database);
    bool all_bound = true;
    for (i32 i = 0; i < database->cell_count; ++i) {
        GdsCell *cell = &database->cells[i];
        for (i32 k = 0; k < cell->sref_count; ++k) {
            all_bound &= bind(database, &index, cell->srefs[k].name, &cell->srefs[k].cell);
        }
        for (i32 k = 0; k < cell->aref_count; ++k) {
            all_bound &= bind(database, &index, cell->arefs[k].name, &cell->arefs[k].cell);
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
