// disc.h: the discs of grid points that the kernels slide over a grid.
#pragma once
#include "sim/kernels/offsets.h"

// A neighbour as column and row offset.
struct DiscPoint {
    i32 dx, dy;
};

// A disc of grid points and its edge.
//   points  the neighbours within the radius, nearest first, centre included
//   edge    the points that leave the disc when its centre moves one column to the right, seen from
//           the new centre; mirrored as (-dx - 1, dy) they are the points that enter it
// Both come from one sorted neighbour table, but by two roundings of the distance, so near the
// radius they can disagree by a point; the results rest on it.
struct Disc {
    DiscPoint *points;
    i32 count;
    DiscPoint *edge;
    i32 edge_count;
};

// The leading entries of the table whose distance is at most `radius`, and the edge as told above.
//   offsets   sorted by offsets_sort_by_distance
//   spacing   micrometres between grid points;  radius  micrometres
// A new disc, freed with disc_free. A nan radius gives an empty one.
Disc *disc_create(const GridOffset *offsets, i32 offset_count, f32 spacing, f32 radius);

// Frees the disc with its lists; null is ignored.
void disc_free(Disc *disc);

template <>
struct Freed<Disc> {
    void operator()(Disc *disc) const { disc_free(disc); }
};

// The points of the disc alone, as a new array; *count receives their number.
Owned<DiscPoint[]> offsets_disc(const GridOffset *offsets, i32 offset_count, f32 radius, i32 *count);

// The points of its edge alone, as a new array (null when there are none); *count receives their number.
Owned<DiscPoint[]> offsets_disc_edge(const GridOffset *offsets, i32 offset_count, f32 spacing, f32 radius,
                                     i32 *count);
