// gds_hierarchy.h: the extent of cells with all that they refer to. References must be bound; an unbound one
// adds nothing. Any depth of nesting and any size of AREF is safe; cycles end.
#pragma once
#include "gds/gds_database.h"

// The cell's extent, its own origin included, in the coordinates of the placement's parent.
// Fills the cell's cache; a cell first met through a rotated reference keeps the wider box of
// that visit. `depth` is not looked at. After an interrupt the extents are of no use.
Box gds_cell_bbox(GdsCell *cell, GdsPlacement placement, i32 depth);

// Sizes every cell that is not sized yet, in table order and as it lies in its own coordinates: flattening
// needs the extents of all. After an interrupt some are missing.
void gds_size_cells(GdsDatabase *database);
