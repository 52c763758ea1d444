// stack_surface.h: the surface of a stack: a height and the layer that forms it at each grid point.
#pragma once
#include "process/stack.h"

// Recomputes every grid cell from the layers: the topmost layer that is present at the point or at
// one of its eight neighbours forms the surface, so that walls one grid point wide stay visible.
void stack_update_surface(Stack *stack);

// The largest surface height, at least 0, micrometres.
f32 stack_largest_height(const Stack *stack);
