// stack_layers.h: the list of layers of a stack. A slot keeps its number when its layer is gone.
#pragma once
#include "process/stack.h"
#include "sim/layer.h"

// Appends a layer, which the stack then owns, in the next slot.
void stack_append_layer(Stack *stack, Layer *layer);

// Number of slots that hold a layer.
i32 stack_count_layers(const Stack *stack);
