// offsets_sorted.h: the sorted table of a grid's neighbours, from a quarter of it.
#pragma once
#include "sim/kernels/offsets.h"

// The same table as offsets_create and offsets_sort_by_distance give, for a quarter of the sorting: distances
// do not depend on the signs of the offsets. *count receives the number of entries. After an interrupt the
// table is of no use.
//   spacing   micrometres between grid points
Owned<GridOffset[]> offsets_create_sorted(i32 n, i32 m, f32 spacing, i32 *count);
