// reference.h: the kernels once more in their plainest form, as twins for the tests: each does what
// its namesake promises, point by point, without any shortcut.
#pragma once
#include <vector>
#include "sim/kernels/etch_kernels.h"
#include "sim/kernels/mask.h"
#include "sim/kernels/mask_filter.h"
#include "sim/kernels/taper.h"

namespace reference {

std::vector<GridOffset> offsets(i32 n, i32 m, f32 spacing);
void sort_by_distance(std::vector<GridOffset> *offsets);

struct PointLists {
    std::vector<DiscPoint> points, edge;
};
PointLists disc(const std::vector<GridOffset> &offsets, f32 spacing, f32 radius);

void dilate(const PointLists &disc, const f32 *input, f32 *output, i32 grid_n, i32 grid_m);
void erode(const PointLists &disc, const f32 *input, f32 *output, i32 grid_n, i32 grid_m);
void smooth(const PointLists &disc, const f32 *input, f32 *output, i32 grid_n, i32 grid_m);
void apply_resolution(const PointLists &disc, const u8 *input, u8 *output, i32 mask_n, i32 mask_m);
bool contains(const FlatPolygon *polygon, f32 x, f32 y);
f32 rasterize(const PolygonList *polygons, u8 *mask, i32 mask_n, i32 mask_m, f32 spacing, MaskLayer wanted,
              u32 mask_type);
void taper(const TaperInput *input, const f32 *bottom, f32 *top, GridCell *cells, i32 top_layer);
void etch_lateral(const EtchStack *stack, const PointLists &disc);
void etch_vertical(const EtchStack *stack, f32 depth);

}  // namespace reference
