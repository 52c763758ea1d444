// stack_layers.h: the list of layers of a stack. A slot keeps its number when its layer is gone.
#pragma once
#include "process/stack.h"
#include "sim/layer.h"

// Appends a layer, which the stack then owns, in the next slot.
void stack_append_layer(Stack *stack, Layer *layer);

// Number of slots that hold a layer.
i32 stack_count_layers(const Stack *stack);

// Frees the layers of which the last step left nothing. The `changed` flags stay set, so that a later picture
// finds what it has to draw anew.
void stack_drop_empty_layers(Stack *stack);

// Clears the `changed` flag of all layers.
void stack_settle_layers(Stack *stack);
