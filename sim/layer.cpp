#include "sim/layer.h"

#include <cassert>

#include "platform/memory.h"
#include "process/stack.h"
#include "sim/layer_gl.h"

Layer *layer_create(i32 grid_n, i32 grid_m, f32 spacing) {
    assert(grid_n > 0 && grid_m > 0);
    const i64 points = i64{grid_n} * grid_m;
    Layer *layer = memory_new_zeroed<Layer>();
    layer->top = memory_new_array<f32>(points);
    layer->bottom = memory_new_array<f32>(points);
    layer->changed = 1;
    layer->grid_n = static_cast<u32>(grid_n);
    layer->grid_m = static_cast<u32>(grid_m);
    layer->spacing = spacing;
    layer_gl_create(layer);
    return layer;
}

void layer_free(Layer *layer) {
    if (layer == nullptr) {
        return;
    }
    layer_gl_delete(layer);
    memory_free(layer->material_name);
    memory_free(layer->legend_name);
    memory_free(layer->top);
    memory_free(layer->bottom);
    memory_free(layer);
}

bool layer_fits(const Layer *layer, const Stack *stack) {
    return layer != nullptr && stack != nullptr && layer->top != nullptr && layer->bottom != nullptr &&
           layer->grid_n == static_cast<u32>(stack->grid_n) &&
           layer->grid_m == static_cast<u32>(stack->grid_m);
}

bool layer_is_empty(const Layer *layer) {
    assert(layer != nullptr);
    const i64 points = i64{layer->grid_n} * layer->grid_m;
    for (i64 i = 0; i < points; ++i) {
        if (!(layer->top[i] - layer->bottom[i] == 0.0F)) {
            return false;
        }
    }
    return true;
}

f32 layer_middle_thickness(const Layer *layer) {
    assert(layer != nullptr);
    const u32 middle = layer->grid_n / 2;
    return layer->top[middle] - layer->bottom[middle];
}
