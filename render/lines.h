// lines.h: the ten profiles of the surface whose points carry height labels.
#pragma once
#include "process/stack.h"

// Fills the line vertices of a stack from its grid cells and, when this thread holds a context, loads them.
// Point j of all lines lie together; x = column * spacing, y = row * spacing, z = height, micrometres.
void stack_update_lines(Stack *stack);
