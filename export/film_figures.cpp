#include "export/film_figures.h"

#include <cassert>
#include <cmath>
#include <limits>

// Smallest and largest of some heights; both are nan when one of them is.
struct Range {
    f32 low, high;
    bool unknown;
};

static constexpr Range EMPTY_RANGE = {std::numeric_limits<f32>::infinity(),
                                      -std::numeric_limits<f32>::infinity(), false};

static void range_take(Range *range, f32 value) {
    range->unknown |= std::isnan(value);
    range->low = value < range->low ? value : range->low;
    range->high = value > range->high ? value : range->high;
}

static void range_end(Range *range) {
    if (range->unknown) {
        range->low = range->high = std::numeric_limits<f32>::quiet_NaN();
    }
}

// The share of a row or column in what lies between the first and the last of them, in spacings.
static f64 share_of(u32 index, u32 count) {
    return count < 2 ? 0.0 : index == 0 || index + 1 == count ? 0.5 : 1.0;
}

// What a film has at a corner of the grid, micrometres.
static f64 corner_thickness(const Layer *layer, bool right, bool behind) {
    const i64 n = right ? i64{layer->grid_n} - 1 : 0;
    const i64 m = behind ? i64{layer->grid_m} - 1 : 0;
    const i64 point = m * layer->grid_n + n;
    return f64{layer->top[point] - layer->bottom[point]};
}

// What the two triangles of the grid's quads enclose differs from the mean of each quad's four corners only
// by this, in squares of the spacing: two corners of the grid belong to one triangle, the others to two.
static f64 corner_volume(const Layer *layer) {
    return (corner_thickness(layer, true, false) + corner_thickness(layer, false, true) -
            corner_thickness(layer, false, false) - corner_thickness(layer, true, true)) /
           12.0;
}

FilmFigures film_figures(const Layer *layer) {
    assert(layer != nullptr && layer->grid_n > 0 && layer->grid_m > 0);
    FilmFigures figures = {};
    Range thicknesses = EMPTY_RANGE;
    Range tops = EMPTY_RANGE;
    f64 sum = 0.0;
    i64 present = 0;
    for (u32 m = 0; m < layer->grid_m; ++m) {
        f64 row_area = 0.0;  // of the cut along this row, in spacings
        for (u32 n = 0; n < layer->grid_n; ++n) {
            const i64 point = i64{m} * layer->grid_n + n;
            const f32 top = layer->top[point];
            const f32 thickness = top - layer->bottom[point];
            if (thickness == 0.0F) {
                continue;
            }
            ++present;
            sum += f64{thickness};
            row_area += share_of(n, layer->grid_n) * f64{thickness};
            range_take(&thicknesses, thickness);
            range_take(&tops, top);
        }
        if (m == 0) {
            figures.face_area = row_area * f64{layer->spacing};
        }
        figures.volume += share_of(m, layer->grid_m) * row_area;
    }
    figures.volume += layer->grid_n > 1 && layer->grid_m > 1 ? corner_volume(layer) : 0.0;
    figures.middle = layer_middle_thickness(layer);
    figures.volume *= f64{layer->spacing} * f64{layer->spacing};
    figures.coverage = static_cast<f64>(present) / static_cast<f64>(i64{layer->grid_n} * layer->grid_m);
    if (present > 0) {
        range_end(&thicknesses);
        range_end(&tops);
        figures.smallest = thicknesses.low;
        figures.largest = thicknesses.high;
        figures.mean = sum / static_cast<f64>(present);
        figures.highest = tops.high;
        figures.step_height = tops.high - tops.low;
    }
    return figures;
}
