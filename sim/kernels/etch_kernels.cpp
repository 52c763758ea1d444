#include "sim/kernels/etch_kernels.h"
#include <cassert>
#include "platform/owned.h"
#include "sim/kernels/grid_dilate.h"

// For asserts: every layer has both of its sides.
[[maybe_unused]] static bool stack_is_sound(const EtchStack *stack) {
    bool sound = stack != nullptr && stack->cells != nullptr && stack->grid_n > 0 && stack->grid_m > 0 &&
                 stack->layer_count >= 0;
    for (i32 slot = 0; sound && slot < stack->layer_count; ++slot) {
        const EtchLayer *layer = &stack->layers[slot];
        sound = layer->top == nullptr || (layer->bottom != nullptr && layer->bottom != layer->top);
    }
    return sound;
}

// Lowers the layers at one point to the eroded height.
static void lateral_point(const EtchStack *stack, i64 point, f32 eroded) {
    GridCell *record = &stack->cells[0];
    for (i32 slot = stack->layer_count - 1; slot >= 1; --slot) {
        const EtchLayer *layer = &stack->layers[slot];
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

void etch_lateral(const EtchStack *stack, const Disc *disc) {
    assert(stack_is_sound(stack) && disc != nullptr);
    const i64 point_count = grid_point_count(stack->grid_n, stack->grid_m);
    const Owned<f32[]> owned_heights = memory_scratch<f32>(point_count);
    const Owned<f32[]> owned_eroded = memory_scratch<f32>(point_count);
    f32 *heights = owned_heights.get();
    f32 *eroded = owned_eroded.get();
    for (i64 i = 0; i < point_count; ++i) {
        heights[i] = stack->cells[i].height;
    }
    grid_erode_disc(disc, {heights, stack->grid_n, stack->grid_m}, eroded);
    for (i64 i = 0; i < point_count; ++i) {
        // Only cell 0 changes on the way, and only from its own point on; so heights stay current.
        if (eroded[i] < heights[i]) {
            lateral_point(stack, i, eroded[i]);
        }
    }
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

static void vertical_point(const EtchStack *stack, i64 point, f32 budget) {
    for (i32 slot = stack->layer_count - 1; slot >= 0; --slot) {
        const EtchLayer *layer = &stack->layers[slot];
        if (layer->top == nullptr || layer->top[point] == layer->bottom[point]) {
            continue;
        }
        if (layer->etch_class == ETCH_STOPS ||
            vertical_layer(layer, point, layer->etch_class == ETCH_RESIST ? 2.0F : 1.0F, &budget)) {
            stack->cells[point] = {layer->top[point], slot};
            return;
        }
    }
}

void etch_vertical(const EtchStack *stack, f32 depth) {
    assert(stack_is_sound(stack));
    const i64 point_count = grid_point_count(stack->grid_n, stack->grid_m);
    for (i64 point = 0; point < point_count; ++point) {
        vertical_point(stack, point, depth);
    }
}
