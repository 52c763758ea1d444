// run_stack.h: what the worker does to the stack between a step and its picture.
#pragma once
#include "process/stack.h"

// Frees the layers of which the last step left nothing and clears the `changed` flag of the others.
//   with_meshes   brings the meshes of changed layers up to date first, and a layer without triangles
//                 counts as gone; needs a current OpenGL context. Without, a layer is gone when its
//                 thickness is 0 everywhere, which comes to the same.
void stack_refresh_layers(Stack *stack, bool with_meshes);
