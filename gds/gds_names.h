// gds_names.h: the names by which the references of a layout call cells, each of them kept once. Names are
// bytes of any value but 0.
#pragma once
#include "gds/gds_store.h"
#include "log/text.h"

struct GdsName {
    NString string;  // its text lies behind the record
    u64 hash;
    i64 cell;  // for the binding of references: number of the cell that is meant, or -1
};

// All zero is an empty table.
struct GdsNames {
    GdsName **slots;  // owned; open addressing, null where nothing lies
    i64 slot_count;   // a power of two, or 0
    i64 count;
    GdsStore store;  // of the names
};

// The name of these bytes, new when there is none yet; it stays where it is. Lack of memory ends the program.
GdsName *gds_names_add(GdsNames *names, const char *text, i64 length);

// The name of these bytes, or null.
GdsName *gds_names_find(const GdsNames *names, const char *text, i64 length);

// Frees all names; the table is empty afterwards.
void gds_names_clear(GdsNames *names);

// The text, or "" for an absent name.
inline const char *gds_name_text(const GdsName *name) {
    return name != nullptr ? name->string.text : "";
}
