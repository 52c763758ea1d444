// padded_grid.h: a copy of a grid with extra columns on both sides, so that the inner loops of the
// kernels need no test for the grid's left and right end.
#pragma once
#include <cassert>
#include "platform/owned.h"

// Point (n, m) is values[m * stride + pad + n]; rows outside the grid do not exist.
// On the right there are pad + PADDED_GRID_SLACK extra columns, so that a block of columns that
// begins in the grid may be read whole.
template <typename T>
struct PaddedGrid {
    Owned<T[]> values;
    i64 stride;
    i32 pad;
};

inline constexpr i32 PADDED_GRID_SLACK = 16;

// Every extra column holds `fill`; the grid's own columns are uninitialised.
template <typename T>
PaddedGrid<T> padded_grid_create(i32 grid_n, i32 grid_m, i32 pad, T fill) {
    assert(grid_n >= 0 && grid_m >= 0 && pad >= 0);
    PaddedGrid<T> grid = {};
    grid.pad = pad;
    grid.stride = static_cast<i64>(grid_n) + 2 * static_cast<i64>(pad) + PADDED_GRID_SLACK;
    grid.values = memory_scratch<T>(grid.stride * grid_m);
    for (i64 m = 0; m < grid_m; ++m) {
        T *row = grid.values.get() + m * grid.stride;
        for (i64 column = 0; column < pad; ++column) {
            row[column] = fill;
        }
        for (i64 column = static_cast<i64>(pad) + grid_n; column < grid.stride; ++column) {
            row[column] = fill;
        }
    }
    return grid;
}

// Address of column 0 of row m.
template <typename T>
inline T *padded_grid_row(const PaddedGrid<T> *grid, i64 m) {
    return grid->values.get() + m * grid->stride + grid->pad;
}
