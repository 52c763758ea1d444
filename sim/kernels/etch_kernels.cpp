#include "sim/kernels/etch_kernels.h"
#include <cassert>
#include "platform/memory.h"
#include "sim/kernels/grid_dilate.h"

// Lowers the layers at one point to the eroded height.
static void lateral_point(const EtchScene *scene, i64 point, f32 eroded) {
    GridCell *record = &scene->cells[0];
    for (i32 slot = scene->layer_count - 1; slot >= 1; --slot) {
        const EtchLayer *layer = &scene->layers[slot];
        if (layer->top == nullptr || layer->top[point] - layer->bottom[point] == 0.0F) {
            continue;
        }
        if (eroded >= layer->top[point]) {
            return;
        }
        if (layer->etch_class == ETCH_STOPS) {
            *record = {layer->top[point], slot};
        } else if (layer->bottom[point] < eroded) {
            layer->top[point] = eroded;
            *record = {eroded, slot};
            return;
        } else {
            layer->top[point] = layer->bottom[point];
        }
    }
}

void etch_lateral(const EtchScene *scene, const Disc *disc) {
    assert(scene->cells != nullptr && scene->grid_n > 0 && scene->grid_m > 0);
    const i64 point_count = static_cast<i64>(scene->grid_n) * scene->grid_m;
    f32 *heights = memory_new_array<f32>(point_count);
    f32 *eroded = memory_new_array<f32>(point_count);
    for (i64 i = 0; i < point_count; ++i) {
        heights[i] = scene->cells[i].height;
    }
    grid_erode_disc(disc, {heights, scene->grid_n, scene->grid_m}, eroded);
    for (i64 i = 0; i < point_count; ++i) {
        // Only cell 0 changes on the way, and only from its own point on; so heights stay current.
        if (eroded[i] < heights[i]) {
            lateral_point(scene, i, eroded[i]);
        }
    }
    memory_free(eroded);
    memory_free(heights);
}

// Takes the budget of a class away from one layer at one point.
//   rate      1, or 2 where a micrometre of the layer uses up two of the budget
//   budget    in/out: what is left of it
// Returns whether the layer is left standing.
static bool vertical_layer(const EtchLayer *layer, i64 point, f32 rate, f32 *budget) {
    const f32 thickness = layer->top[point] - layer->bottom[point];
    const f32 needed = thickness * rate;
    if (needed > *budget) {
        *budget = *budget / rate;
        layer->top[point] = layer->top[point] - *budget;
        return true;
    }
    layer->top[point] = layer->bottom[point];
    *budget = *budget - needed;
    return false;
}

static void vertical_point(const EtchScene *scene, i64 point, f32 budget) {
    for (i32 slot = scene->layer_count - 1; slot >= 0; --slot) {
        const EtchLayer *layer = &scene->layers[slot];
        if (layer->top == nullptr || layer->top[point] == layer->bottom[point]) {
            continue;
        }
        if (layer->etch_class == ETCH_STOPS ||
            vertical_layer(layer, point, layer->etch_class == ETCH_RESIST ? 2.0F : 1.0F, &budget)) {
            scene->cells[point] = {layer->top[point], slot};
            return;
        }
    }
}

void etch_vertical(const EtchScene *scene, f32 depth) {
    assert(scene->cells != nullptr && scene->layer_count >= 0);
    const i64 point_count = static_cast<i64>(scene->grid_n) * scene->grid_m;
    for (i64 point = 0; point < point_count; ++point) {
        vertical_point(scene, point, depth);
    }
}
