#include "sim/deposition.h"

#include <cassert>

#include "sim/film.h"
#include "sim/kernels/disc.h"
#include "sim/kernels/grid.h"
#include "sim/kernels/grid_dilate.h"
#include "sim/stack_layers.h"

// Share of the thickness over which a deposited film smooths its own surface.
static constexpr f32 SMOOTHING_SHARE = 0.1F;

// Lets the film reach sideways by `radius` micrometres.
static void film_spread(const Stack *stack, Layer *layer, f32 radius) {
    const Owned<Disc> disc(disc_create(stack->offsets, stack->offset_count, stack->spacing, radius));
    Owned<f32[]> spread = memory_scratch<f32>(stack_point_count(stack));
    grid_dilate_disc(disc.get(), {layer->top, stack->grid_n, stack->grid_m}, spread.get());
    memory_free(layer->top);
    layer->top = spread.release();
}

void deposition_run(Stack *stack, const ProcessStep *step) {
    assert(stack != nullptr && step != nullptr);
    Owned<Layer> layer(film_create(stack, step, step->material));
    const i64 points = stack_point_count(stack);
    for (i64 i = 0; i < points; ++i) {
        const f32 height = stack->cells[i].height;
        layer->bottom[i] = height;
        layer->top[i] = height + step->thickness;
    }
    film_spread(stack, layer.get(), step->step_coverage * step->thickness);
    for (i64 i = 0; i < points; ++i) {
        stack->cells[i] = {layer->top[i], stack->layer_count};
    }
    stack_append_layer(stack, layer.release());
    layer_smooth_disc(stack, step->thickness * SMOOTHING_SHARE);
}
