#include "log/log.h"
#include "platform/memory.h"
#include "sim/film.h"
#include "sim/kernels/disc.h"
#include "sim/kernels/grid.h"
#include "sim/kernels/mask.h"
#include "sim/kernels/mask_filter.h"
#include "sim/kernels/taper.h"
#include "sim/stack_layers.h"
#include "sim/step_run.h"

// The exposed mask over the padded grid, blurred by the resolution; freed with memory_free.
//   critical   receives the critical dimension, micrometres
static u8 *mask_expose(const Stack *stack, const ProcessStep *step, f32 *critical) {
    const i32 mask_n = stack->grid_n + 2 * stack->margin_cells;
    const i32 mask_m = stack->grid_m + 2 * stack->margin_cells;
    const i64 points = static_cast<i64>(mask_n) * mask_m;
    u8 *drawn = memory_new_zeroed<u8>(points);
    u8 *exposed = memory_new_zeroed<u8>(points);
    *critical = mask_rasterize(stack->polygons, drawn, mask_n, mask_m, stack->spacing,
                               static_cast<u32>(step->mask_id), static_cast<u32>(step->mask_type));
    Disc disc = disc_create(stack->offsets, stack->offset_count, stack->spacing, step->resolution * 0.5F);
    mask_apply_resolution(&disc, drawn, exposed, mask_n, mask_m);
    disc_free(&disc);
    memory_free(drawn);
    return exposed;
}

static void resist_develop(Stack *stack, const u8 *mask, f32 mean, i32 angle_degrees, Layer *layer) {
    TaperScene scene = {};
    scene.offsets = stack->offsets;
    scene.offset_count = stack->offset_count;
    scene.spacing = stack->spacing;
    scene.grid_n = stack->grid_n;
    scene.grid_m = stack->grid_m;
    scene.padding = stack->margin_cells;
    scene.mask = mask;
    scene.mean = mean;
    scene.angle_degrees = angle_degrees;
    taper_apply(&scene, layer->bottom, layer->top, stack->cells, stack->layer_count);
}

void photo_run(Stack *stack, const ProcessStep *step) {
    step_announce(step);
    i32 angle_degrees = truncate_i32(static_cast<f64>(step->taper));
    Layer *layer = film_create(stack, step, "_PR_");
    const f32 mean = film_coat(stack, step, layer);
    f32 critical = 0.0F;
    u8 *mask = mask_expose(stack, step, &critical);
    if (step->thickness > critical && angle_degrees < 90) {
        console_append_narrow(
            "WARNING: CD of layer is smaller than photo resist thickness: clipping taper angle to 90 "
            "degrees\r\n");
        angle_degrees = 90;
    }
    resist_develop(stack, mask, mean, angle_degrees, layer);
    memory_free(mask);
    stack_append_layer(stack, layer);
    layer_smooth_disc(stack, step->rr * step->thickness);
}
