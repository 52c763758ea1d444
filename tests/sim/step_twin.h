// step_twin.h: the process steps once more, in the plainest form, over standard containers, composed of the
// plain twins of the kernels. They share no code with the simulation; its results must be the same bit for
// bit.
#pragma once
#include <string>
#include <vector>

#include "process/process_step.h"
#include "tests/sim/kernels/reference.h"

struct TwinLayer {
    bool alive;
    std::string material;
    std::vector<f32> bottom, top;
    i32 changed;
};

struct TwinStack {
    i32 grid_n, grid_m, margin;
    f32 spacing;
    const PolygonList *polygons;  // not owned
    std::vector<GridCell> cells;
    std::vector<TwinLayer> layers;
    std::vector<GridOffset> offsets;
};

// A stack without layers whose masks are made of those polygons, which have to outlive it.
TwinStack twin_create(i32 grid_n, i32 grid_m, i32 margin, f32 spacing, const PolygonList *polygons);

// Runs a deposition, coating, photo, etch, strip or release.
void twin_execute(TwinStack *stack, const ProcessStep *step);
