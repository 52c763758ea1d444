// mask_hints.h: hints about masks without polygons.
#pragma once
#include "gds/gds_pairs.h"
#include "process/stack.h"

// For every photo step whose layer, or pair of layer and datatype, has no polygon in the layout, in the cell
// with all that it refers to, or in the section, a hint with the layers or pairs that are there. Between
// hints_start and hints_end.
//   inside   false leaves the section itself out
void mask_hints(const Stack *stack, const GdsDatabase *layout, const GdsCell *cell, bool inside);

// Adds the extracted polygons that reach into the section itself, not only into its margin, and sorts the
// list; their boxes are left empty.
void mask_count_section(const Stack *stack, GdsPairList *pairs);

// Whether neither the cell nor any that it refers to has a polygon.
bool mask_cell_is_empty(const GdsDatabase *layout, const GdsCell *cell);
