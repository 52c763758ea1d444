// grid_dilate.h: maximum and minimum of a grid over a sliding disc. The output has the input's size and is a
// different array.
#pragma once
#include "sim/kernels/disc.h"
#include "sim/kernels/grid.h"

// output = the largest input over the in-bounds points of the disc around each point, and at
// least 0.0; nan is passed over. An empty disc gives 0.
void grid_dilate_disc(const Disc *disc, GridView input, f32 *output);

// output = the smallest input over the in-bounds points of the disc around each point, and at most the
// largest f32; nan is passed over. An empty disc gives the largest f32.
void grid_erode_disc(const Disc *disc, GridView input, f32 *output);
