// material_table.h: the materials defined so far by a process file, in file order.
#pragma once
#include "platform/base.h"

struct MaterialEntry {
    char *name;  // owned
    char *type;  // etch type, owned; null for the substrate, which can never be a target
};

struct MaterialTable {
    MaterialEntry *entries;
    i32 count, capacity;
};

MaterialTable *material_table_create();  // empty, room for 512

// Adds copies of a name and an etch type (which may be null).
void material_table_add(MaterialTable *table, const char *name, const char *type);

// Whether a material of exactly this name is there.
bool material_table_has(const MaterialTable *table, const char *name);

void material_table_free(MaterialTable *table);  // with every entry; takes null
