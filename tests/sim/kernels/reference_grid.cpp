#include "reference.h"

namespace reference {

namespace {

struct Grid {
    const f32 *values;
    i32 n, m;
    bool has(i32 column, i32 row) const { return column >= 0 && column < n && row >= 0 && row < m; }
    f32 at(i32 column, i32 row) const { return values[static_cast<i64>(row) * n + column]; }
};

template <typename Better>
void slide(const PointLists &disc, const Grid &grid, f32 *output, f32 start, Better better) {
    for (i32 m = 0; m < grid.m; ++m) {
        f32 best = start;
        for (i32 n = 0; n < grid.n; ++n) {
            bool anew = n == 0;
            for (const DiscPoint &point : disc.edge) {
                if (n > 0 && grid.has(n + point.dx, m + point.dy) &&
                    grid.at(n + point.dx, m + point.dy) == best) {
                    anew = true;
                }
            }
            if (anew) {
                best = start;
                for (const DiscPoint &point : disc.points) {
                    if (grid.has(n + point.dx, m + point.dy) &&
                        better(grid.at(n + point.dx, m + point.dy), best)) {
                        best = grid.at(n + point.dx, m + point.dy);
                    }
                }
            } else {
                for (const DiscPoint &point : disc.edge) {
                    if (grid.has(n - point.dx - 1, m + point.dy) &&
                        better(grid.at(n - point.dx - 1, m + point.dy), best)) {
                        best = grid.at(n - point.dx - 1, m + point.dy);
                    }
                }
            }
            output[static_cast<i64>(m) * grid.n + n] = best;
        }
    }
}

}  // namespace

void dilate(const PointLists &disc, const f32 *input, f32 *output, i32 grid_n, i32 grid_m) {
    slide(disc, {input, grid_n, grid_m}, output, 0.0F, [](f32 value, f32 best) { return value > best; });
}

void erode(const PointLists &disc, const f32 *input, f32 *output, i32 grid_n, i32 grid_m) {
    slide(disc, {input, grid_n, grid_m}, output, 3.4028235e38F,
          [](f32 value, f32 best) { return value < best; });
}

void smooth(const PointLists &disc, const f32 *input, f32 *output, i32 grid_n, i32 grid_m) {
    const Grid grid = {input, grid_n, grid_m};
    for (i32 m = 0; m < grid_m; ++m) {
        f64 sum = 0.0;
        i32 count = 0;
        for (const DiscPoint &point : disc.points) {
            if (grid.has(point.dx, m + point.dy)) {
                sum += static_cast<f64>(grid.at(point.dx, m + point.dy));
                ++count;
            }
        }
        f32 mean = static_cast<f32>(sum / static_cast<f64>(count));
        const f32 above = mean - grid.at(0, m);
        if (static_cast<f64>(above) < 0.0001) {
            mean = grid.at(0, m);
        }
        output[static_cast<i64>(m) * grid_n] = mean;
        for (i32 n = 1; n < grid_n; ++n) {
            for (const DiscPoint &point : disc.edge) {
                if (grid.has(n + point.dx, m + point.dy)) {
                    sum -= static_cast<f64>(grid.at(n + point.dx, m + point.dy));
                    --count;
                }
                if (grid.has(n - point.dx - 1, m + point.dy)) {
                    sum += static_cast<f64>(grid.at(n - point.dx - 1, m + point.dy));
                    ++count;
                }
            }
            output[static_cast<i64>(m) * grid_n + n] = static_cast<f32>(sum / static_cast<f64>(count));
        }
    }
}

}  // namespace reference
