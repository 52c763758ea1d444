// named_cell.h: the cell that a command line names.
#pragma once
#include "gds/gds_database.h"

// The first cell of that name; null after telling on standard error that there is none, and which one was
// perhaps meant.
GdsCell *named_cell_find(const GdsDatabase *layout, const char *name);
