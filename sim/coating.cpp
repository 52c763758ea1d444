#include "sim/coating.h"

#include <cassert>

#include "sim/film.h"
#include "sim/stack_layers.h"

void coating_run(Stack *stack, const ProcessStep *step) {
    assert(stack != nullptr && step != nullptr);
    Owned<Layer> layer(film_create(stack, step, step->material));
    film_coat(stack, step, layer.get());
    stack_append_layer(stack, layer.release());
    layer_smooth_disc(stack, step->rr * step->thickness);
}
