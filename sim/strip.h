// strip.h: the step that takes the resist off.
#pragma once
#include "process/stack.h"

// Frees every layer of resist; its slot stays empty.
void strip_run(Stack *stack);
