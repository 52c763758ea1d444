// coating.h: the step that pours a film which levels itself.
#pragma once
#include "process/stack.h"

// Adds a layer of the step's material, thickness and degree of planarisation, smoothed by its reflow.
void coating_run(Stack *stack, const ProcessStep *step);
