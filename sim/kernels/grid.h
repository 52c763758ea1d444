// grid.h: the grid that the kernels work on: n columns across the section, m rows along it; point (n, m) of
// a plain array lies at index m * n_count + n. Heights are micrometres.
#pragma once
#include "platform/base.h"

// One point of the grid: the surface of the whole stack.
struct GridCell {
    f32 height;     // 0 is the level that the substrate starts from
    i32 top_layer;  // slot of the layer that forms the surface, see the algorithms for exceptions
};

// Heights to be read; the caller owns them.
struct GridView {
    const f32 *values;
    i32 n, m;
};

// Number of points of a grid.
inline i64 grid_point_count(i32 grid_n, i32 grid_m) {
    return i64{grid_n} * grid_m;
}

// The same of a view.
inline i64 grid_point_count(GridView grid) {
    return grid_point_count(grid.n, grid.m);
}
