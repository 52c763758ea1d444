// film.h: what the steps that add a layer share: deposition, coating and photo.
#pragma once
#include "process/stack.h"
#include "sim/layer.h"

// A new layer over the stack's grid, heights uninitialised, with the step's legend name and colour.
//   material_name   copied; may be null
// The caller hands it to stack_append_layer.
Layer *film_create(const Stack *stack, const ProcessStep *step, const char *material_name);

// Mean height of the surface over the whole grid, micrometres; summed in f64.
f32 stack_mean_height(const Stack *stack);

// Pours the step's thickness over the surface, levelled towards the mean height by its degree of
// planarisation: fills bottom and top of the layer. No point gets a negative thickness.
// Returns the mean height.
f32 film_coat(const Stack *stack, const ProcessStep *step, Layer *layer);

// Smooths the top of the newest layer with a disc of `radius` micrometres and writes the surface
// where the layer has material; elsewhere the layer becomes absent and the surface stays.
void layer_smooth_disc(Stack *stack, f32 radius);
