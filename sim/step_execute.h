// step_execute.h: run process steps on a stack. All steps report on the console.
#pragma once
#include "process/stack.h"

// Runs one step by its kind; an unknown kind does nothing.
void step_execute(Stack *stack, const ProcessStep *step);

// Step algorithms, one file each.
void deposition_run(Stack *stack, const ProcessStep *step);
void coating_run(Stack *stack, const ProcessStep *step);
void photo_run(Stack *stack, const ProcessStep *step);
void etch_run(Stack *stack, const ProcessStep *step);
void material_remove_run(Stack *stack, const ProcessStep *step);
void strip_run(Stack *stack, const ProcessStep *step);

// Writes the heights of every 20th column to "VertexData.txt" in the current folder; a file that
// cannot be opened is passed over (the reason goes to diagnostic_write).
void dump_run(const Stack *stack);

// "Executing %s ... \r\n" with the step's title; nothing for a step without one.
void step_announce(const ProcessStep *step);
