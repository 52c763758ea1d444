// offsets.h: the table of a grid's neighbours in order of distance, from which discs are cut.
#pragma once
#include "platform/owned.h"

// A grid neighbour: column and row offset, and distance in micrometres.
struct GridOffset {
    i32 dx, dy;
    f32 distance;
};

// The unsorted neighbour table of a grid of n columns and m rows: 2n - 1 columns and 2m - 1 rows, row by row.
// *count receives the number of entries. After an interrupt the rest of the table is uninitialised.
//   spacing   micrometres between grid points
Owned<GridOffset[]> offsets_create(i32 n, i32 m, f32 spacing, i32 *count);

// Sorts a neighbour table by distance, ascending; equal distances keep their order. A table of less than
// three entries, or an absent one, is left as it is. After an interrupt the table is of no use.
void offsets_sort_by_distance(GridOffset *offsets, i32 count);

// Whether the distances ascend as offsets_sort_by_distance leaves them, looked at in a few hundred places;
// for asserts.
bool offsets_are_sorted(const GridOffset *offsets, i32 count);
