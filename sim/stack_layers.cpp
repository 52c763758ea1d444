#include "sim/stack_layers.h"

#include <cassert>

#include "platform/memory.h"

static constexpr i32 LAYER_CAPACITY = 512;

void stack_append_layer(Stack *stack, Layer *layer) {
    assert(layer_fits(layer, stack));
    array_append(&stack->layers, &stack->layer_count, &stack->layer_capacity, layer, LAYER_CAPACITY);
}

i32 stack_count_layers(const Stack *stack) {
    assert(stack != nullptr);
    i32 count = 0;
    for (i32 i = 0; i < stack->layer_count; ++i) {
        count += stack->layers[i] != nullptr ? 1 : 0;
    }
    return count;
}

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

void stack_settle_layers(Stack *stack) {
    assert(stack != nullptr);
    for (i32 i = 0; i < stack->layer_count; ++i) {
        if (stack->layers[i] != nullptr) {
            stack->layers[i]->changed = 0;
        }
    }
}
