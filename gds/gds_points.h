// gds_points.h: the points of a record, and what box they need. Both are as if done point by point, but
// several at once where the processor can.
#pragma once
#include "gds/gds_database.h"

// Takes so many points, 0 allowed, from their bytes in a record, and returns their box, BOX_EMPTY without
// points.
//   bytes    8 for each point, x before y, big-endian
//   points   room for them all, not among the bytes
Box gds_points_take(const u8 *bytes, i32 count, Point *points);

// The box of so many points, 0 allowed; BOX_EMPTY without points.
Box gds_points_box(const Point *points, i32 count);
