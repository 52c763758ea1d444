// disc_shape.h: a disc as one span of columns per row, and whether its edge fits it.
#pragma once
#include "sim/kernels/disc.h"

// What of a disc can matter on a grid of n columns and m rows.
//   half_widths   of row dy at half_widths[dy + rows]: the disc has the columns -half..half there, at
//                 most those within n - 1; -1 for a row without points
//   rows          the disc reaches rows -rows..rows of the grid; -1 when it has no point
//   columns       the largest half width, or -1
//   is_spans      every row is such a span; otherwise half_widths says nothing
//   edge_is_exact also: the edge is exactly what leaves the spans, so that a window updated by the
//                 edge stays the window
struct DiscShape {
    i32 *half_widths;
    i32 rows, columns;
    bool is_spans, edge_is_exact;
};

// The shape of a disc on a grid, freed with disc_shape_free. The points of the disc must be distinct; it may
// be freed before the shape.
DiscShape *disc_shape_create(const Disc *disc, i32 grid_n, i32 grid_m);

// Frees the shape; null is ignored.
void disc_shape_free(DiscShape *shape);

template <>
struct Freed<DiscShape> {
    void operator()(DiscShape *shape) const { disc_shape_free(shape); }
};

// The points of a list that can lie in the grid in some step of the update from column n - 1 to n,
// leaving at n + dx or entering at n - dx - 1; the order is kept. A new array; *count receives the number of
// its points.
Owned<DiscPoint[]> disc_edge_in_grid(const Disc *disc, i32 grid_n, i32 grid_m, i32 *count);

// The largest |dx| + 1 and |dy| of a list; 0 for an empty one.
struct DiscReach {
    i32 columns, rows;
};

// The reach of a list of `count` points.
DiscReach disc_reach(const DiscPoint *points, i32 count);
