// etch.h: the steps that take material away: etch to a depth, and release of whole materials.
#pragma once
#include "process/stack.h"

// Takes the step's depth of the target materials, and of resist at half the rate, from every point; a share
// of it also sideways. Every other material stops it. A target without a layer is told on the console.
void etch_run(Stack *stack, const ProcessStep *step);

// Empties the layers of the target materials; they stay in the list, and nothing above them falls down. A
// target without a layer is told on the console.
void material_remove_run(Stack *stack, const ProcessStep *step);
