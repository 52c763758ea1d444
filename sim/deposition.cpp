#include <cstring>

#include "platform/memory.h"
#include "sim/film.h"
#include "sim/kernels/disc.h"
#include "sim/kernels/grid.h"
#include "sim/kernels/grid_dilate.h"
#include "sim/stack_layers.h"
#include "sim/step_run.h"

// Share of the thickness over which a deposited film smooths its own surface.
static constexpr f32 SMOOTHING_SHARE = 0.1F;

// Lets the film reach sideways by `radius` micrometres.
static void film_spread(const Stack *stack, Layer *layer, f32 radius) {
    const i64 points = static_cast<i64>(stack->grid_n) * stack->grid_m;
    Disc disc = disc_create(stack->offsets, stack->offset_count, stack->spacing, radius);
    f32 *spread = memory_new_array<f32>(points);
    grid_dilate_disc(&disc, {layer->top, stack->grid_n, stack->grid_m}, spread);
    std::memcpy(layer->top, spread, static_cast<size_t>(points) * sizeof(f32));
    memory_free(spread);
    disc_free(&disc);
}

void deposition_run(Stack *stack, const ProcessStep *step) {
    step_announce(step);
    Layer *layer = film_create(stack, step, step->material);
    const i64 points = static_cast<i64>(stack->grid_n) * stack->grid_m;
    for (i64 i = 0; i < points; ++i) {
        const f32 height = stack->cells[i].height;
        layer->bottom[i] = height;
        layer->top[i] = height + step->thickness;
    }
    film_spread(stack, layer, step->step_coverage * step->thickness);
    for (i64 i = 0; i < points; ++i) {
        stack->cells[i] = {layer->top[i], stack->layer_count};
    }
    stack_append_layer(stack, layer);
    layer_smooth_disc(stack, step->thickness * SMOOTHING_SHARE);
}
