// grid_dilate.h: maximum and minimum of a grid over a sliding disc. Grids are n columns by m rows,
// indexed m * n_count + n; input and output are different arrays.
#pragma once
#include "sim/disc.h"

// output = the largest input over the in-bounds points of the disc around each point, and at
// least 0.0; nan is passed over. An empty disc gives 0.
void grid_dilate_disc(const Disc *disc, const f32 *input, f32 *output, i32 grid_n, i32 grid_m);

// output = the smallest input over the disc, and at most the largest f32; nan is passed over.
void grid_erode_disc(const Disc *disc, const f32 *input, f32 *output, i32 grid_n, i32 grid_m);
