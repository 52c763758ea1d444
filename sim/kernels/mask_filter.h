// mask_filter.h: the resolution of the lithography: a photo mask loses what is smaller than a disc.
#pragma once
#include "sim/kernels/disc.h"

// Majority vote over the in-bounds points of the disc: output 1 when more than half are set.
//   input, output   a byte per point of mask_n columns and mask_m rows, 0 or 1; different arrays
void mask_apply_resolution(const Disc *disc, const u8 *input, u8 *output, i32 mask_n, i32 mask_m);
