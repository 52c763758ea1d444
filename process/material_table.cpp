#include "process/material_table.h"

#include <cassert>
#include <cstring>

#include "platform/memory.h"
#include "process/process_text.h"

static constexpr i32 FIRST_CAPACITY = 512;

MaterialTable *material_table_create() {
    auto *table = memory_new_zeroed<MaterialTable>();
    table->entries = memory_new_array<MaterialEntry>(FIRST_CAPACITY);
    table->capacity = FIRST_CAPACITY;
    return table;
}

void material_table_add(MaterialTable *table, const char *name, const char *type) {
    assert(table != nullptr && name != nullptr);
    const MaterialEntry entry = {process_text_copy(name).release(), process_text_copy(type).release()};
    array_append(&table->entries, &table->count, &table->capacity, entry, FIRST_CAPACITY);
}

bool material_table_has(const MaterialTable *table, const char *name) {
    assert(table != nullptr && name != nullptr);
    for (i32 i = 0; i < table->count; ++i) {
        if (std::strcmp(table->entries[i].name, name) == 0) {
            return true;
        }
    }
    return false;
}

void material_table_free(MaterialTable *table) {
    if (table == nullptr) {
        return;
    }
    for (i32 i = 0; i < table->count; ++i) {
        memory_free(table->entries[i].name);
        memory_free(table->entries[i].type);
    }
    memory_free(table->entries);
    memory_free(table);
}
