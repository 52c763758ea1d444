// film_stack.h: stacks given by their heights at each grid point, without a context.
#pragma once
#include <gtest/gtest.h>
#include <functional>
#include <vector>
#include "process/stack.h"
#include "sim/layer.h"

struct FilmHeights {
    f32 bottom, top;  // equal where the film is absent
};

using FilmFunction = std::function<FilmHeights(i32 n, i32 m)>;

// Grid points are 1 micrometre apart, so that heights of 1 and slopes of 45 degrees are easily written.
struct FilmStack {
    FilmStack(i32 grid_n, i32 grid_m);
    ~FilmStack();
    FilmStack(const FilmStack &) = delete;
    FilmStack &operator=(const FilmStack &) = delete;

    Layer *add(const FilmFunction &heights, f32 alpha = 1.0F);
    // A film whose heights depend on the column only, one item for each.
    Layer *add_columns(const std::vector<FilmHeights> &columns, f32 alpha = 1.0F);

    Stack stack;
    std::vector<Layer *> layers;
};
