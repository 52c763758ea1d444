// Polygons are drawn edge by edge: an edge crosses a run of rows, and in each of them it turns the
// points left of its crossing inside out. The crossings are those of polygon_contains, in the same
// f32 arithmetic.
#include "sim/kernels/mask.h"
#include <cassert>
#include <cmath>
#include <cstring>
#include "platform/owned.h"

// Where an edge from b to a (in the order of the polygon's points) crosses the height y.
static f32 edge_crossing(FlatPoint a, FlatPoint b, f32 y) {
    const f32 across = b.x - a.x;
    const f32 up = y - a.y;
    const f32 product = across * up;
    const f32 height = b.y - a.y;
    const f32 shift = product / height;
    return shift + a.x;
}

bool polygon_contains(const FlatPolygon *polygon, f32 x, f32 y) {
    assert(polygon != nullptr && polygon->point_count >= 0);
    bool inside = false;
    for (i32 i = 0; i < polygon->point_count; ++i) {
        const FlatPoint a = polygon->points[i];
        const FlatPoint b = polygon->points[i == 0 ? polygon->point_count - 1 : i - 1];
        if ((a.y > y) != (b.y > y) && x < edge_crossing(a, b, y)) {
            inside = !inside;
        }
    }
    return inside;
}

// Half-open ranges of columns and rows.
struct MaskWindow {
    i32 column, column_end;
    i32 row, row_end;
};

// What is needed to draw polygons into one mask.
struct MaskCanvas {
    u8 *mask;
    i32 mask_n, mask_m;
    f32 spacing;
    f32 per_spacing;  // 1 / spacing, rounded
    Owned<f32[]>
        positions;      // of the columns and rows, as many as the longer side; null when they do not ascend
    Owned<u8[]> flips;  // (mask_n + 1) per row, all zero between polygons: 1 where inside and outside change
};

// First grid point of a range: the floor, at least 0. What does not fit an i32 starts at 0 when it is
// negative or nan.
static i32 range_begin(f32 position, f32 spacing, i32 size) {
    const f32 floor = std::floor(position / spacing);
    if (floor >= static_cast<f32>(size)) {
        return size;
    }
    const i32 begin = truncate_i32(static_cast<f64>(floor));
    return begin < 0 ? 0 : begin;
}

static i32 range_end(f32 position, f32 spacing, i32 size) {
    const f32 floor = std::floor(position / spacing);
    return floor >= static_cast<f32>(size) ? size : truncate_i32(static_cast<f64>(floor));
}

static MaskWindow polygon_window(const MaskCanvas *canvas, const FlatPolygon *polygon) {
    return {range_begin(polygon->x_min, canvas->spacing, canvas->mask_n),
            range_end(polygon->x_max, canvas->spacing, canvas->mask_n),
            range_begin(polygon->y_min, canvas->spacing, canvas->mask_m),
            range_end(polygon->y_max, canvas->spacing, canvas->mask_m)};
}

// Tests point by point; for spacings whose positions do not ascend.
static void draw_plainly(const MaskCanvas *canvas, const FlatPolygon *polygon, MaskWindow window, u8 value) {
    for (i32 j = window.row; j < window.row_end; ++j) {
        const f32 y = static_cast<f32>(j) * canvas->spacing;
        for (i32 i = window.column; i < window.column_end; ++i) {
            const f32 x = static_cast<f32>(i) * canvas->spacing;
            if (polygon_contains(polygon, x, y)) {
                canvas->mask[static_cast<i64>(j) * canvas->mask_n + i] = value;
            }
        }
    }
}

// The first index from begin to end whose position is not below `limit`, or end.
static i32 first_not_below(const f32 *positions, i32 begin, i32 end, f32 limit) {
    while (begin < end) {
        const i32 middle = begin + (end - begin) / 2;
        if (positions[middle] < limit) {
            begin = middle + 1;
        } else {
            end = middle;
        }
    }
    return begin;
}

// The first column of the window whose position is not below `limit`; its end for one beyond, its
// begin for nan. The quotient is a guess that the exact positions then correct.
static i32 column_not_below(const MaskCanvas *canvas, MaskWindow window, f32 limit) {
    const f32 guess = limit * canvas->per_spacing;
    i32 column = window.column;
    if (guess >= static_cast<f32>(window.column_end)) {
        column = window.column_end;
    } else if (guess > static_cast<f32>(window.column)) {
        column = static_cast<i32>(guess);
    }
    const f32 *positions = canvas->positions.get();
    while (column > window.column && !(positions[column - 1] < limit)) {
        --column;
    }
    while (column < window.column_end && positions[column] < limit) {
        ++column;
    }
    return column;
}

// Notes in every row that the edge crosses which points lie left of it.
static void draw_edge(const MaskCanvas *canvas, FlatPoint a, FlatPoint b, MaskWindow window) {
    // An edge crosses y when one end is above y and the other is not, so for low <= y < high. An end
    // without a number is never above; its crossing is no number, which has no point to its left.
    if (std::isnan(a.y) || std::isnan(b.y)) {
        return;
    }
    const f32 low = a.y < b.y ? a.y : b.y;
    const f32 high = a.y < b.y ? b.y : a.y;
    const f32 *positions = canvas->positions.get();
    u8 *flips = canvas->flips.get();
    const i32 row = first_not_below(positions, window.row, window.row_end, low);
    const i32 row_end = first_not_below(positions, row, window.row_end, high);
    const i64 stride = static_cast<i64>(canvas->mask_n) + 1;
    for (i32 j = row; j < row_end; ++j) {
        const f32 crossing = edge_crossing(a, b, positions[j]);
        const i32 end = column_not_below(canvas, window, crossing);
        flips[j * stride + window.column] ^= 1U;
        flips[j * stride + end] ^= 1U;
    }
}

// Sweeps the window from left to right, sets what is inside and clears the notes.
static void fill_flipped(const MaskCanvas *canvas, MaskWindow window, u8 value) {
    for (i64 j = window.row; j < window.row_end; ++j) {
        u8 *flips = canvas->flips.get() + j * (static_cast<i64>(canvas->mask_n) + 1);
        u8 *mask = canvas->mask + j * canvas->mask_n;
        u32 inside = 0;
        for (i32 i = window.column; i < window.column_end; ++i) {
            inside ^= flips[i];
            mask[i] = inside != 0 ? value : mask[i];
        }
        std::memset(flips + window.column, 0, static_cast<size_t>(window.column_end - window.column) + 1);
    }
}

static void draw_polygon(const MaskCanvas *canvas, const FlatPolygon *polygon, u8 value) {
    const MaskWindow window = polygon_window(canvas, polygon);
    if (window.column >= window.column_end || window.row >= window.row_end) {
        return;
    }
    if (canvas->positions == nullptr) {
        draw_plainly(canvas, polygon, window, value);
        return;
    }
    for (i32 i = 0; i < polygon->point_count; ++i) {
        const FlatPoint previous = polygon->points[i == 0 ? polygon->point_count - 1 : i - 1];
        draw_edge(canvas, polygon->points[i], previous, window);
    }
    fill_flipped(canvas, window, value);
}

static MaskCanvas canvas_create(u8 *mask, i32 mask_n, i32 mask_m, f32 spacing) {
    MaskCanvas canvas = {mask, mask_n, mask_m, spacing, 1.0F / spacing, nullptr, nullptr};
    if (spacing > 0.0F && std::isfinite(spacing)) {
        const i32 longer = mask_n > mask_m ? mask_n : mask_m;
        canvas.positions = memory_scratch<f32>(longer);
        for (i32 i = 0; i < longer; ++i) {
            canvas.positions.get()[i] = static_cast<f32>(i) * spacing;
        }
        canvas.flips = memory_scratch_zeroed<u8>((static_cast<i64>(mask_n) + 1) * mask_m);
    }
    return canvas;
}

static bool is_of_layer(const FlatPolygon *polygon, MaskLayer layer) {
    return polygon->layer == layer.layer &&
           (layer.datatype == EVERY_DATATYPE || polygon->datatype == layer.datatype);
}

f32 mask_rasterize(const PolygonList *polygons, u8 *mask, i32 mask_n, i32 mask_m, f32 spacing,
                   MaskLayer layer, u32 mask_type) {
    assert(polygons != nullptr && mask != nullptr && mask_n >= 0 && mask_m >= 0);
    std::memset(mask, mask_type == 0 ? 1 : 0, static_cast<size_t>(mask_n) * static_cast<size_t>(mask_m));
    f32 critical_dimension = F32_MAX;
    const MaskCanvas canvas = canvas_create(mask, mask_n, mask_m, spacing);
    for (i32 i = 0; i < polygons->count; ++i) {
        const FlatPolygon *polygon = &polygons->items[i];
        if (!is_of_layer(polygon, layer)) {
            continue;
        }
        draw_polygon(&canvas, polygon, static_cast<u8>(mask_type));
        const f32 height = polygon->y_max - polygon->y_min;
        const f32 width = polygon->x_max - polygon->x_min;
        const f32 side = height < width ? height : width;
        critical_dimension = side < critical_dimension ? side : critical_dimension;
    }
    return critical_dimension;
}
