// mask_hints.h: hints about masks whose layer has no polygons.
#pragma once
#include "gds/gds_database.h"
#include "process/stack.h"

// For every photo step whose layer has no polygon in the layout, in the cell with all that it refers to, or
// in the section, a hint with the layers that are there. Between hints_start and hints_end.
//   inside   false leaves the section itself out
void mask_hints(const Stack *stack, const GdsDatabase *layout, const GdsCell *cell, bool inside);
