// disc_count.h: how many points of the window that slides along a row lie inside the grid, as the
// incremental update counts them: the disc's points at column 0, then one less per leaving and one
// more per entering point of the edge. Exact integers, whatever the edge.
#pragma once
#include "sim/kernels/disc_shape.h"

// Hands out the counts row by row; each row costs the grid's columns plus a few edge points.
struct DiscCounter {
    i32 grid_n, grid_m;
    i32 row;            // the row whose counts come next
    i64 *first_counts;  // points of the disc at column 0 in the rows below dy, at [dy + grid_m - 1]
    DiscPoint *edge;    // sorted by dy
    i32 *edge_starts;   // first edge point of row dy at [dy + grid_m - 1]
    i32 *differences;   // second difference of the counts along the row
};

// A new counter that stands before row 0 of a grid of grid_n columns and grid_m rows, freed with
// disc_counter_free. The disc may be freed before it.
DiscCounter *disc_counter_create(const Disc *disc, i32 grid_n, i32 grid_m);

// Frees the counter; null is ignored.
void disc_counter_free(DiscCounter *counter);

template <>
struct Freed<DiscCounter> {
    void operator()(DiscCounter *counter) const { disc_counter_free(counter); }
};

// The counts of the next row, grid_n of them. At most grid_m calls.
void disc_counter_next_row(DiscCounter *counter, i32 *counts);
