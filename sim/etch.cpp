#include "sim/etch.h"

#include <cassert>
#include <cstring>

#include "log/log.h"
#include "sim/kernels/etch_kernels.h"
#include "sim/layer.h"
#include "sim/stack_surface.h"

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

// One EtchClass per slot with the step's targets marked.
static Owned<EtchClass[]> classes_create(const Stack *stack, const ProcessStep *step) {
    Owned<EtchClass[]> classes = memory_scratch_zeroed<EtchClass>(stack->layer_count);
    const NameList *targets = &step->target_materials;
    for (i32 i = 0; i < targets->count; ++i) {
        if (!classes_mark(stack, targets->items[i], ETCH_TARGET, classes.get())) {
            console_printf("WARNING: material %s not found. Perhaps removed in earlier step.\r\n",
                           targets->items[i]);
        }
    }
    return classes;
}

// The layers by slot as the kernels take them.
static Owned<EtchLayer[]> etch_layers_create(const Stack *stack, const EtchClass *classes) {
    Owned<EtchLayer[]> layers = memory_scratch_zeroed<EtchLayer>(stack->layer_count);
    for (i32 i = 0; i < stack->layer_count; ++i) {
        const Layer *layer = stack->layers[i];
        if (layer != nullptr) {
            layers.get()[i] = {layer->top, layer->bottom, classes[i]};
        }
    }
    return layers;
}

void etch_run(Stack *stack, const ProcessStep *step) {
    assert(stack != nullptr && step != nullptr);
    const Owned<EtchClass[]> owned_classes = classes_create(stack, step);
    EtchClass *classes = owned_classes.get();
    classes_mark(stack, RESIST_MATERIAL, ETCH_RESIST, classes);
    const Owned<EtchLayer[]> layers = etch_layers_create(stack, classes);
    const EtchStack etched = {stack->cells, stack->grid_n, stack->grid_m, layers.get(), stack->layer_count};
    const f32 radius = step->iso * step->depth;
    const Owned<Disc> disc(disc_create(stack->offsets, stack->offset_count, stack->spacing, radius));
    etch_lateral(&etched, disc.get());
    etch_vertical(&etched, step->depth);
    for (i32 i = 0; i < stack->layer_count; ++i) {
        if (stack->layers[i] != nullptr && classes[i] != ETCH_STOPS) {
            stack->layers[i]->changed = 1;
        }
    }
}

void material_remove_run(Stack *stack, const ProcessStep *step) {
    assert(stack != nullptr && step != nullptr);
    const Owned<EtchClass[]> owned_classes = classes_create(stack, step);
    const EtchClass *classes = owned_classes.get();
    const i64 points = stack_point_count(stack);
    for (i32 i = 0; i < stack->layer_count; ++i) {
        Layer *layer = stack->layers[i];
        if (classes[i] != ETCH_STOPS) {
            std::memcpy(layer->top, layer->bottom, static_cast<size_t>(points) * sizeof(f32));
            layer->changed = 1;
        }
    }
    stack_update_surface(stack);
}
