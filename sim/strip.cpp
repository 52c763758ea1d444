#include "sim/strip.h"

#include <cassert>
#include <cstring>

#include "log/log.h"
#include "sim/layer.h"
#include "sim/stack_surface.h"

void strip_run(Stack *stack) {
    assert(stack != nullptr);
    bool any_layer = false;
    for (i32 i = 0; i < stack->layer_count; ++i) {
        Layer *layer = stack->layers[i];
        if (layer == nullptr) {
            continue;
        }
        any_layer = true;
        if (layer->material_name != nullptr && std::strcmp(layer->material_name, RESIST_MATERIAL) == 0) {
            layer_free(layer);
            stack->layers[i] = nullptr;
        }
    }
    // Only a stack without any layer is told about, not one without resist; kept so, since
    // users compare the console texts of runs.
    if (!any_layer) {
        console_append_narrow("WARNING: PR material not found. Perhaps removed in earlier step.\r\n");
    }
    stack_update_surface(stack);
}
