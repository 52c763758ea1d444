// mask.h: photo masks: a byte per point of the padded grid, 1 where resist stays.
// The padded grid has mask_n columns and mask_m rows, indexed row * mask_n + column; point (i, j)
// lies at (i * spacing, j * spacing) in the frame of the extracted polygons.
#pragma once
#include "gds/polygon_list.h"

inline constexpr i32 EVERY_DATATYPE = -1;

// The polygons of a mask.
struct MaskLayer {
    u32 layer;
    i32 datatype;  // or EVERY_DATATYPE
};

// Draws the polygons of a layer, or those of one of its datatypes, into the mask.
//   mask_type   1 dark: polygons keep resist; 0 clear: polygons open it
// Returns the critical dimension: the smallest side of those polygons' boxes, micrometres; the
// largest f32 when there are none.
f32 mask_rasterize(const PolygonList *polygons, u8 *mask, i32 mask_n, i32 mask_m, f32 spacing,
                   MaskLayer layer, u32 mask_type);

// Even-odd crossing test in f32; micrometres.
bool polygon_contains(const FlatPolygon *polygon, f32 x, f32 y);
