// dump.h: whether a run can write its dumps.
#pragma once
#include "process/stack.h"

// True when no step is a dump, or "VertexData.txt" can be written as things are; a file of that name stays as
// it is. Otherwise the reason goes to diagnostic_write.
bool dump_is_possible(const Stack *stack);
