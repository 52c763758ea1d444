#include "sim/film.h"

#include <cassert>

#include "process/process_text.h"
#include "sim/kernels/disc.h"
#include "sim/kernels/grid.h"
#include "sim/kernels/grid_smooth.h"

Layer *film_create(const Stack *stack, const ProcessStep *step, const char *material_name) {
    assert(stack != nullptr && step != nullptr);
    Layer *layer = layer_create(stack->grid_n, stack->grid_m, stack->spacing);
    layer->material_name = process_text_copy(material_name).release();
    layer->legend_name = process_text_copy(step->label).release();
    layer->color[0] = step->color_r;
    layer->color[1] = step->color_g;
    layer->color[2] = step->color_b;
    layer->color[3] = step->alpha;
    return layer;
}

f32 stack_mean_height(const Stack *stack) {
    assert(stack != nullptr && stack->cells != nullptr);
    const i64 points = stack_point_count(stack);
    f64 sum = 0.0;
    for (i64 i = 0; i < points; ++i) {
        sum += static_cast<f64>(stack->cells[i].height);
    }
    return static_cast<f32>(sum / static_cast<f64>(points));
}

f32 film_coat(const Stack *stack, const ProcessStep *step, Layer *layer) {
    assert(step != nullptr && layer_fits(layer, stack));
    const f32 mean = stack_mean_height(stack);
    const i64 points = stack_point_count(stack);
    for (i64 i = 0; i < points; ++i) {
        const f32 height = stack->cells[i].height;
        const f32 leveled = (mean - height) * step->dop + height;
        const f32 top = leveled + step->thickness;
        layer->bottom[i] = height;
        layer->top[i] = top > height ? top : height;
    }
    return mean;
}

void layer_smooth_disc(Stack *stack, f32 radius) {
    assert(stack->layer_count > 0 && layer_fits(stack->layers[stack->layer_count - 1], stack));
    Layer *layer = stack->layers[stack->layer_count - 1];
    const i64 points = stack_point_count(stack);
    const Owned<Disc> disc(disc_create(stack->offsets, stack->offset_count, stack->spacing, radius));
    const Owned<f32[]> owned_smooth = memory_scratch<f32>(points);
    f32 *smooth = owned_smooth.get();
    grid_smooth_disc(disc.get(), {layer->top, stack->grid_n, stack->grid_m}, smooth);
    for (i64 i = 0; i < points; ++i) {
        if (smooth[i] > layer->bottom[i]) {
            layer->top[i] = smooth[i];
            // One more than the layer's own slot; kept so, since dumps show it.
            stack->cells[i] = {smooth[i], stack->layer_count};
        } else {
            layer->top[i] = layer->bottom[i];
        }
    }
}
