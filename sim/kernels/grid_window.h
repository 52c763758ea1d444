// grid_window.h: the largest or smallest value within a disc around every point of a grid, at a cost
// per point that grows with the rows of the disc.
#pragma once
#include "sim/kernels/disc_shape.h"
#include "sim/kernels/extremum.h"
#include "sim/kernels/padded_grid.h"

// output = the extremum over the in-bounds points of the disc's spans, beginning at the start value.
//   input   without nan, padded with the neutral value by at least shape->columns
//   output  a value per point of the grid of grid_n columns and grid_m rows
// Instantiated for RunningMaximum and RunningMinimum. Where equal values differ in their bits (0.0
// and -0.0), either can come out.
template <typename Extremum>
void grid_window_extremum(const DiscShape *shape, const PaddedGrid<f32> *input, f32 *output, i32 grid_n,
                          i32 grid_m);
