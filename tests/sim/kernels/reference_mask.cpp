#include <cmath>
#include <cstring>
#include "reference.h"

namespace reference {

void apply_resolution(const PointLists &disc, const u8 *input, u8 *output, i32 mask_n, i32 mask_m) {
    const auto inside = [&](i32 column, i32 row) {
        return column >= 0 && column < mask_n && row >= 0 && row < mask_m;
    };
    const auto is_set = [&](i32 column, i32 row) {
        return input[static_cast<i64>(row) * mask_n + column] != 0 ? 1 : 0;
    };
    for (i32 m = 0; m < mask_m; ++m) {
        i32 total = 0;
        i32 set = 0;
        for (i32 n = 0; n < mask_n; ++n) {
            for (const DiscPoint &point : n == 0 ? disc.points : disc.edge) {
                if (n > 0 && inside(n + point.dx, m + point.dy)) {
                    --total;
                    set -= is_set(n + point.dx, m + point.dy);
                }
                const i32 column = n == 0 ? point.dx : n - point.dx - 1;
                if (inside(column, m + point.dy)) {
                    ++total;
                    set += is_set(column, m + point.dy);
                }
            }
            output[static_cast<i64>(m) * mask_n + n] =
                static_cast<f32>(set) > static_cast<f32>(total) * 0.5F ? 1 : 0;
        }
    }
}

bool contains(const FlatPolygon *polygon, f32 x, f32 y) {
    if (polygon->point_count < 1) {
        return false;
    }
    bool inside = false;
    FlatPoint last = polygon->points[polygon->point_count - 1];
    for (i32 i = 0; i < polygon->point_count; ++i) {
        const FlatPoint point = polygon->points[i];
        if ((point.y > y) != (last.y > y)) {
            const f32 dx = last.x - point.x;
            const f32 up = y - point.y;
            const f32 product = dx * up;
            const f32 dy = last.y - point.y;
            const f32 quotient = product / dy;
            const f32 crossing = quotient + point.x;
            if (x < crossing) {
                inside = !inside;
            }
        }
        last = point;
    }
    return inside;
}

f32 rasterize(const PolygonList *polygons, u8 *mask, i32 mask_n, i32 mask_m, f32 spacing, MaskLayer wanted,
              u32 mask_type) {
    std::memset(mask, mask_type == 0 ? 1 : 0, static_cast<size_t>(mask_n) * static_cast<size_t>(mask_m));
    f32 smallest = 3.4028235e38F;
    for (i32 k = 0; k < polygons->count; ++k) {
        const FlatPolygon *polygon = &polygons->items[k];
        const bool any = wanted.datatype < 0;
        if (polygon->layer != wanted.layer || (!any && polygon->datatype != wanted.datatype)) {
            continue;
        }
        for (i32 j = 0; j < mask_m; ++j) {
            for (i32 i = 0; i < mask_n; ++i) {
                // The range of columns and rows, in words: at or beyond the floor of the smaller side
                // and before the floor of the larger one.
                const bool in_columns = static_cast<f32>(i) >= floorf(polygon->x_min / spacing) &&
                                        static_cast<f32>(i) < floorf(polygon->x_max / spacing);
                const bool in_rows = static_cast<f32>(j) >= floorf(polygon->y_min / spacing) &&
                                     static_cast<f32>(j) < floorf(polygon->y_max / spacing);
                if (in_columns && in_rows &&
                    contains(polygon, static_cast<f32>(i) * spacing, static_cast<f32>(j) * spacing)) {
                    mask[static_cast<i64>(j) * mask_n + i] = static_cast<u8>(mask_type);
                }
            }
        }
        const f32 height = polygon->y_max - polygon->y_min;
        const f32 width = polygon->x_max - polygon->x_min;
        smallest = height < smallest ? height : smallest;
        smallest = width < smallest ? width : smallest;
    }
    return smallest;
}

}  // namespace reference
