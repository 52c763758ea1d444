// taper.h: remove resist where the mask is open and slope the walls of what stays.
#pragma once
#include "sim/kernels/grid.h"
#include "sim/kernels/offsets.h"

// What the resist is exposed and sloped by.
struct TaperInput {
    const GridOffset *offsets;  // sorted by distance, covers the padded grid
    i32 offset_count;
    f32 spacing;
    i32 grid_n, grid_m;
    i32 padding;        // grid points of margin of the mask on each side
    const u8 *mask;     // grid_n + 2 padding columns, grid_m + 2 padding rows; 1 where resist stays
    f32 mean;           // mean surface height under the resist, micrometres
    i32 angle_degrees;  // wall angle from the wafer plane
};

// Where the mask is open or there is no resist, top = bottom and the cell stays. Elsewhere the top
// comes down to mean + s * tan(angle) where an opening lies at a distance s that is nearer than the
// wall is long, never below bottom, and the cell becomes (top, top_layer).
//   bottom, top, cells   a value per point of the grid; three different arrays
//   top_layer            slot of the resist
void taper_apply(const TaperInput *input, const f32 *bottom, f32 *top, GridCell *cells, i32 top_layer);
