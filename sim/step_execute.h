// step_execute.h: run process steps on a stack. All steps report on the console.
#pragma once
#include "process/stack.h"

// Tells the step's title and runs the step by its kind; an unknown kind does nothing. A dump tells nothing.
// On the worker.
void step_execute(Stack *stack, const ProcessStep *step);
