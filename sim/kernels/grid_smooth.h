// grid_smooth.h: mean of a grid over a sliding disc.
#pragma once
#include "sim/kernels/disc.h"
#include "sim/kernels/grid.h"

// output = the mean of the input over the in-bounds points of the disc, as a running sum in f64 along
// each row (leaving point subtracted first, then the entering one added, in the order of the edge).
// The first column of a row is never lowered: a mean less than 0.0001 above the input is replaced
// by the input there. The other columns have no such guard; the results rest on it.
// An empty disc gives nan. Input and output are different arrays.
void grid_smooth_disc(const Disc *disc, GridView input, f32 *output);
