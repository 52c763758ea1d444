// photo.h: the step that patterns resist by a mask of the layout.
#pragma once
#include "process/stack.h"

// Adds a layer of resist, opened by the step's mask and with the step's wall angle. A mask whose critical
// dimension is smaller than the resist is thick gets vertical walls, which the console tells.
void photo_run(Stack *stack, const ProcessStep *step);
