// gds_twin.h: sizing and flattening as plain recursion and plain loops, and outlines of paths number by
// number, to compare with. Slow, and only for hierarchies that are shallow and small.
#pragma once
#include "gds/gds_flatten.h"

Box twin_cell_bbox(GdsCell *cell, GdsPlacement placement);
i32 twin_flatten(FlattenContext *context, GdsCell *cell, GdsPlacement placement);

// Room for 2 * count + 1 points, as with path_to_polygon, and at least two of the centre line.
i32 twin_path(Point *out, const Point *points, i32 count, u32 width, u16 path_type);
