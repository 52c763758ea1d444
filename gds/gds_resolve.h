// gds_resolve.h: bind the references of a layout to its cells, and tell what follows from it for the whole
// table.
#pragma once
#include "gds/gds_database.h"

// Binds every unbound reference to the first cell of its name.
// Returns 0, or 1 when at least one name matches no cell; such references stay unbound, as do any after an
// interrupt.
i32 gds_resolve_refs(GdsDatabase *database);

// Sets each cell's `bare`. References must be bound; an unbound one leads nowhere.
void gds_mark_bare(GdsDatabase *database);
