// gds_hierarchy.h: the extent of cells with all that they refer to. References must be bound; an unbound one
// adds nothing. Any depth of nesting and any size of AREF is safe; cycles end.
#pragma once
#include "gds/gds_database.h"

// Parts of arrays that are looked at while a layout is sized, but for the first 64 of each array. Hardly an
// array needs more, and this many take a fraction of a second. Beyond it the boxes that arrays are known not
// to exceed count as their extents, at most a few units wider; diagnostic_write names the first array.
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
inline constexpr i64 GDS_SIZE_STEP_LIMIT = 50000;  // for the fuzz target, as the sanitizers are slow
#else
inline constexpr i64 GDS_SIZE_STEP_LIMIT = 1000000;
#endif

// The cell's extent, its own origin included, in the coordinates of the placement's parent.
// Fills the cell's cache; a cell first met through a rotated reference keeps the wider box of
// that visit. `depth` is not looked at. After an interrupt the extents are of no use.
Box gds_cell_bbox(GdsCell *cell, GdsPlacement placement, i32 depth);

// Sizes every cell that is not sized yet, in table order and as it lies in its own coordinates: flattening
// needs the extents of all. After an interrupt some are missing. Returns the steps of GDS_SIZE_STEP_LIMIT.
i64 gds_size_cells(GdsDatabase *database);
