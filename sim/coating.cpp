#include "sim/film.h"
#include "sim/stack_layers.h"
#include "sim/step_run.h"

void coating_run(Stack *stack, const ProcessStep *step) {
    step_announce(step);
    Layer *layer = film_create(stack, step, step->material);
    film_coat(stack, step, layer);
    stack_append_layer(stack, layer);
    layer_smooth_disc(stack, step->rr * step->thickness);
}
