#include "render/top_normal.h"

#include <cassert>

// Adds the normals of the two triangles that fill one grid quadrant around a point.
//   side_x, side_y         +1 or -1: where the quadrant lies
//   along, corner, across  height differences to its three other points, times the spacing
static inline void normal_add_quadrant(Normal *normal, f32 side_x, f32 side_y, f32 along, f32 corner,
                                       f32 across, f32 area) {
    normal->x += -(side_x * along);
    normal->y += side_y * (along - corner);
    normal->z += area;
    normal->x += side_x * (across - corner);
    normal->y += -(side_y * across);
    normal->z += area;
}

static Normal sum_quadrants(const Layer *layer, i64 n, i64 m) {
    const i64 grid_n = layer->grid_n;
    const f32 *here = layer->top + m * grid_n + n;
    const f32 spacing = layer->spacing;
    const f32 area = spacing * spacing;
    const f32 height = *here;
    const auto slope = [=](i64 dx, i64 dy) { return (here[dy * grid_n + dx] - height) * spacing; };
    const bool west = n > 0;
    const bool east = n + 1 < grid_n;
    const bool south = m > 0;
    const bool north = m + 1 < layer->grid_m;
    Normal normal = {0.0F, 0.0F, 0.0F};
    if (east && north) {
        normal_add_quadrant(&normal, 1.0F, 1.0F, slope(1, 0), slope(1, 1), slope(0, 1), area);
    }
    if (west && north) {
        normal_add_quadrant(&normal, -1.0F, 1.0F, slope(-1, 0), slope(-1, 1), slope(0, 1), area);
    }
    if (west && south) {
        normal_add_quadrant(&normal, -1.0F, -1.0F, slope(-1, 0), slope(-1, -1), slope(0, -1), area);
    }
    if (east && south) {
        normal_add_quadrant(&normal, 1.0F, -1.0F, slope(1, 0), slope(1, -1), slope(0, -1), area);
    }
    return normal;
}

// Kept on purpose: the first point carries the normal of the last one, turned round, so that the buffers
// stay the same bytes. It points down; where it does in the first grid square, the surface shader takes the
// triangle's own normal instead, so that a flat top shows nothing of it.
Normal layer_top_normal(const Layer *layer, i64 n, i64 m) {
    assert(layer != nullptr && n >= 0 && n < layer->grid_n && m >= 0 && m < layer->grid_m);
    if (n > 0 || m > 0) {
        return sum_quadrants(layer, n, m);
    }
    const Normal last = sum_quadrants(layer, i64{layer->grid_n} - 1, i64{layer->grid_m} - 1);
    return {-last.x, -last.y, -last.z};
}
