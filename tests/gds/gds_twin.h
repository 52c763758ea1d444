// gds_twin.h: sizing and flattening as plain recursion and plain loops, to compare with. Slow, and only
// for hierarchies that are shallow and small.
#pragma once
#include "gds/gds_flatten.h"

Box twin_cell_bbox(GdsCell *cell, GdsPlacement placement);
i32 twin_flatten(FlattenContext *context, GdsCell *cell, GdsPlacement placement);
