// deposition.h: the step that grows a film; the substrate is the first one.
#pragma once
#include "process/stack.h"

// Adds a layer of the step's material and thickness that reaches sideways by its step coverage, and smooths
// it.
void deposition_run(Stack *stack, const ProcessStep *step);
