// etch_kernels.h: take material away from layers, sideways and downward.
#pragma once
#include "sim/disc.h"
#include "sim/layer.h"

enum EtchClass : u32 {
    ETCH_STOPS = 0,   // not etched: stops the vertical etch
    ETCH_TARGET = 1,  // etched at full rate
    ETCH_RESIST = 2,  // etched at half rate
};

// What the etch passes work on; point_count grid points, classes one per slot.
struct EtchScene {
    GridCell *cells;
    i32 grid_n, grid_m;
    Layer **layers;  // null slots are skipped
    i32 layer_count;
    const u32 *classes;  // EtchClass per slot
};

// The isotropic part: lowers etched layers to the surface eroded by the disc; slot 0 is not touched.
// The surface record of every change goes to cell 0 rather than to the point's own cell; kept so,
// since only point (0, 0) shows it and the vertical pass writes the cells that it reaches.
void etch_lateral(const EtchScene *scene, const Disc *disc);

// The vertical part: takes `depth` micrometres of etched material from the top at every point.
void etch_vertical(const EtchScene *scene, f32 depth);
