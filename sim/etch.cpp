#include <cstring>

#include "log/log.h"
#include "platform/memory.h"
#include "sim/kernels/etch_kernels.h"
#include "sim/layer.h"
#include "sim/stack_surface.h"
#include "sim/step_run.h"

// Gives every layer of that material the class; false when there is none.
static bool classes_mark(const Stack *stack, const char *material_name, EtchClass etch_class,
                         EtchClass *classes) {
    bool found = false;
    for (i32 i = 0; i < stack->layer_count; ++i) {
        const Layer *layer = stack->layers[i];
        if (layer != nullptr && layer->material_name != nullptr &&
            std::strcmp(layer->material_name, material_name) == 0) {
            classes[i] = etch_class;
            found = true;
        }
    }
    return found;
}

// One EtchClass per slot with the step's targets marked; freed with memory_free.
static EtchClass *classes_create(const Stack *stack, const ProcessStep *step) {
    auto *classes = memory_new_zeroed<EtchClass>(stack->layer_count);
    const NameList *targets = &step->target_materials;
    for (i32 i = 0; i < targets->count; ++i) {
        if (!classes_mark(stack, targets->items[i], ETCH_TARGET, classes)) {
            console_printf("WARNING: material %s not found. Perhaps removed in earlier step.\r\n",
                           targets->items[i]);
        }
    }
    return classes;
}

// The layers by slot as the kernels take them; freed with memory_free.
static EtchLayer *etch_layers_create(const Stack *stack, const EtchClass *classes) {
    auto *layers = memory_new_zeroed<EtchLayer>(stack->layer_count);
    for (i32 i = 0; i < stack->layer_count; ++i) {
        const Layer *layer = stack->layers[i];
        if (layer != nullptr) {
            layers[i] = {layer->top, layer->bottom, classes[i]};
        }
    }
    return layers;
}

void etch_run(Stack *stack, const ProcessStep *step) {
    step_announce(step);
    EtchClass *classes = classes_create(stack, step);
    classes_mark(stack, "_PR_", ETCH_RESIST, classes);
    EtchLayer *layers = etch_layers_create(stack, classes);
    const EtchScene scene = {stack->cells, stack->grid_n, stack->grid_m, layers, stack->layer_count};
    Disc disc = disc_create(stack->offsets, stack->offset_count, stack->spacing, step->iso * step->depth);
    etch_lateral(&scene, &disc);
    disc_free(&disc);
    etch_vertical(&scene, step->depth);
    memory_free(layers);
    for (i32 i = 0; i < stack->layer_count; ++i) {
        if (stack->layers[i] != nullptr && classes[i] != ETCH_STOPS) {
            stack->layers[i]->changed = 1;
        }
    }
    memory_free(classes);
}

void material_remove_run(Stack *stack, const ProcessStep *step) {
    console_printf("Executing %s ... \r\n", step->title != nullptr ? step->title : "(null)");
    EtchClass *classes = classes_create(stack, step);
    const i64 points = static_cast<i64>(stack->grid_n) * stack->grid_m;
    for (i32 i = 0; i < stack->layer_count; ++i) {
        Layer *layer = stack->layers[i];
        if (classes[i] != ETCH_STOPS) {
            std::memcpy(layer->top, layer->bottom, static_cast<size_t>(points) * sizeof(f32));
            layer->changed = 1;
        }
    }
    memory_free(classes);
    stack_update_surface(stack);
}
