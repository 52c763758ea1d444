// material_table.h: the materials defined so far by a process file, in file order.
#pragma once
#include "platform/owned.h"

struct MaterialEntry {
    char *name;  // owned
    char *type;  // etch type, owned; null for the substrate, which can never be a target
};

struct MaterialTable {
    MaterialEntry *entries;
    i32 count, capacity;
};

// A new, empty table with room for 512, freed with material_table_free.
MaterialTable *material_table_create();

// Adds copies of a name and an etch type (which may be null).
void material_table_add(MaterialTable *table, const char *name, const char *type);

// Whether a material of exactly this name is there.
bool material_table_has(const MaterialTable *table, const char *name);

// Frees the table with every entry; null is ignored.
void material_table_free(MaterialTable *table);

template <>
struct Freed<MaterialTable> {
    void operator()(MaterialTable *table) const { material_table_free(table); }
};
