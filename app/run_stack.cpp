#include "app/run_stack.h"

#include "render/mesh.h"
#include "sim/layer.h"
#include "sim/stack_setup.h"

void stack_refresh_layers(Stack *stack, bool with_meshes) {
    for (i32 i = 0; i < stack->layer_count; i++) {
        Layer *layer = stack->layers[i];
        if (layer == nullptr || layer->changed == 0) {
            continue;
        }
        if (with_meshes) {
            layer_build_mesh(layer);
        }
        layer->changed = 0;
        bool empty = with_meshes ? layer->index_count == 0 : layer_is_empty(layer);
        if (empty) {
            layer_free(layer);
            stack->layers[i] = nullptr;
        }
    }
}

f32 stack_largest_height(const Stack *stack) {
    f32 largest = 0.0F;
    i64 count = i64{stack->grid_n} * stack->grid_m;
    for (i64 i = 0; i < count; i++) {
        if (stack->cells[i].height > largest) {
            largest = stack->cells[i].height;
        }
    }
    return largest;
}

i32 stack_count_layers(const Stack *stack) {
    i32 count = 0;
    for (i32 i = 0; i < stack->layer_count; i++) {
        count += stack->layers[i] != nullptr ? 1 : 0;
    }
    return count;
}
