// fine_ends.h: triangles of the grid in which a film ends in a straight edge (cut_edges_find), or in which
// the top of one has a step beneath such an edge. Both lie half-way between grid points: of a triangle of
// which one corner is on the other side than the two others the edge cuts two sides in their middles, and a
// vertical wall stands on the line between them.
#pragma once
#include "render/fine_builder.h"

// Appends what is seen of a film in a triangle, wall included, if it is such a one. False, and nothing is
// appended, when it is not.
//   point    number of the triangle's quad
//   is_top   of the top or of the underside
//   is_b     triangle B of the quad or A
//   points   the triangle's corners, counter-clockwise from above
bool fine_ends_append(FineBuilder *builder, i64 point, bool is_top, bool is_b, const i64 points[3]);
