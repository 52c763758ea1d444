// step_run.h: the algorithms of the process steps, a file each. step_execute chooses among them.
#pragma once
#include "process/stack.h"

void deposition_run(Stack *stack, const ProcessStep *step);
void coating_run(Stack *stack, const ProcessStep *step);
void photo_run(Stack *stack, const ProcessStep *step);
void etch_run(Stack *stack, const ProcessStep *step);
void material_remove_run(Stack *stack, const ProcessStep *step);
void strip_run(Stack *stack, const ProcessStep *step);

// Writes the heights of every 20th column to "VertexData.txt" in the stack's dump_folder, whole or not at
// all. A file that cannot be written is passed over: dump_failed is set and the reason goes to
// diagnostic_write.
void dump_run(Stack *stack);

// "Executing %s ... \r\n" with the step's title; nothing for a step without one.
void step_announce(const ProcessStep *step);
