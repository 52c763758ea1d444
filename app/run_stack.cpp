#include "app/run_stack.h"

#include "render/mesh.h"
#include "sim/layer.h"

void stack_refresh_layers(Stack *stack, bool with_meshes) {
    for (i32 i = 0; i < stack->layer_count; ++i) {
        Layer *layer = stack->layers[i];
        if (layer == nullptr || layer->changed == 0) {
            continue;
        }
        if (with_meshes) {
            layer_build_mesh(layer);
        }
        layer->changed = 0;
        const bool empty = with_meshes ? layer->index_count == 0 : layer_is_empty(layer);
        if (empty) {
            layer_free(layer);
            stack->layers[i] = nullptr;
        }
    }
}
