#include "app/run_stack.h"

#include <cassert>

#include "render/drawn_mesh.h"
#include "sim/layer.h"

void stack_drop_empty_layers(Stack *stack) {
    assert(stack != nullptr);
    for (i32 i = 0; i < stack->layer_count; ++i) {
        Layer *layer = stack->layers[i];
        if (layer != nullptr && layer->changed != 0 && layer_is_empty(layer)) {
            layer_free(layer);
            stack->layers[i] = nullptr;
        }
    }
}

void stack_refresh_layers(Stack *stack, bool with_meshes) {
    stack_drop_empty_layers(stack);
    if (with_meshes) {
        stack_build_meshes(stack);
    }
    for (i32 i = 0; i < stack->layer_count; ++i) {
        if (stack->layers[i] != nullptr) {
            stack->layers[i]->changed = 0;
        }
    }
}
