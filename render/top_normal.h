// top_normal.h: the smooth normals of a layer's top surface. Not normalised; x across, y along, z up.
#pragma once
#include "sim/layer.h"

struct Normal {
    f32 x, y, z;
};

// The normal at a grid point (column n, row m): the sum over the triangles of the quadrants around it that
// the grid has, two a quadrant. The first point of the grid has the one of the last point, turned round: see
// there.
Normal layer_top_normal(const Layer *layer, i64 n, i64 m);
