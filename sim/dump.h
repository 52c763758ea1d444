// dump.h: the step that writes the heights of a run to a file, and whether a run can.
#pragma once
#include "process/stack.h"

// True when no step is a dump, or "VertexData.txt" can be written as things are; a file of that name stays as
// it is. Otherwise the reason goes to diagnostic_write.
bool dump_is_possible(const Stack *stack);

// Writes the heights of every 20th column to "VertexData.txt" in the stack's dump_folder, whole or not at
// all. A file that cannot be written is passed over: dump_failed is set and the reason goes to
// diagnostic_write.
void dump_run(Stack *stack);
