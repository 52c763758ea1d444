#include "app/run_stack.h"

#include <cassert>

#include "render/drawn_mesh.h"
#include "sim/stack_layers.h"

void stack_refresh_layers(Stack *stack, bool with_meshes) {
    assert(stack != nullptr);
    stack_drop_empty_layers(stack);
    if (with_meshes) {
        stack_build_meshes(stack);
    }
    stack_settle_layers(stack);
}
