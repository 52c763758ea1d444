// step_twin.h: the process steps once more, in the plainest form, over standard containers. They
// share no code with the simulation; its results must be the same bit for bit.
#pragma once
#include <string>
#include <utility>
#include <vector>

#include "platform/base.h"
#include "process/process_step.h"

struct TwinLayer {
    bool alive;
    std::string material;
    std::vector<f32> bottom, top;
    i32 changed;
};

struct TwinPolygon {
    i32 layer;
    std::vector<std::pair<f32, f32>> points;
    f32 x_min, y_min, x_max, y_max;
};

struct TwinOffset {
    i32 dx, dy;
    f32 distance;
};

struct TwinStack {
    i32 grid_n, grid_m, margin;
    f32 spacing;
    std::vector<f32> height;
    std::vector<i32> top_layer;
    std::vector<TwinLayer> layers;
    std::vector<TwinPolygon> polygons;
    std::vector<TwinOffset> table;
};

TwinStack twin_create(i32 grid_n, i32 grid_m, i32 margin, f32 spacing);

// Runs a deposition, coating, photo, etch, strip or release.
void twin_execute(TwinStack *stack, const ProcessStep *step);
