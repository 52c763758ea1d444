// etch_kernels.h: take material away from layers, sideways and downward.
#pragma once
#include "sim/kernels/disc.h"
#include "sim/kernels/grid.h"

enum EtchClass : u32 {
    ETCH_STOPS = 0,   // not etched: stops the vertical etch
    ETCH_TARGET = 1,  // etched at full rate
    ETCH_RESIST = 2,  // etched at half rate
};

// The heights of one layer, a value per grid point.
struct EtchLayer {
    f32 *top;  // null for an empty slot, which is skipped
    const f32 *bottom;
    EtchClass etch_class;
};

// What the etch passes work on.
struct EtchStack {
    GridCell *cells;  // one per point of the grid
    i32 grid_n, grid_m;
    const EtchLayer *layers;  // by slot, the bottom layer first
    i32 layer_count;
};

// The isotropic part: lowers etched layers to the surface eroded by the disc; slot 0 is not touched.
// The surface record of every change goes to cell 0 rather than to the point's own cell; kept so,
// since only point (0, 0) shows it and the vertical pass writes the cells that it reaches.
void etch_lateral(const EtchStack *stack, const Disc *disc);

// The vertical part: takes `depth` micrometres of etched material from the top at every point.
void etch_vertical(const EtchStack *stack, f32 depth);
