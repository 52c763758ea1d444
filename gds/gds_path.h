// gds_path.h: the outline of a PATH, database units.
#pragma once
#include "gds/gds_database.h"

// The outline of a centre line as a closed polygon.
//   out        room for 2 * count + 1 points; the first point is repeated at the end
//   points     the centre line, count of them
//   width      database units; unsigned, so an absolute (negative) width becomes a very large one
//   path_type  2 extends both ends by half the width; every other type ends flush
// Returns 1, or 0 when there are less than two points, a segment without length, or two
// consecutive parallel segments.
i32 path_to_polygon(Point *out, const Point *points, i32 count, u32 width, u16 path_type);

// p moved away from q by `distance` along the line from q to p; p itself when they coincide.
Point point_extend(Point p, Point q, f64 distance);
