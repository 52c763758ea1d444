#include "sim/photo.h"

#include <cassert>

#include "log/log.h"
#include "sim/film.h"
#include "sim/kernels/disc.h"
#include "sim/kernels/grid.h"
#include "sim/kernels/mask.h"
#include "sim/kernels/mask_filter.h"
#include "sim/kernels/taper.h"
#include "sim/stack_layers.h"

// The exposed mask over the padded grid, blurred by the resolution.
//   critical   receives the critical dimension, micrometres
static Owned<u8[]> mask_expose(const Stack *stack, const ProcessStep *step, f32 *critical) {
    const i32 mask_n = stack->grid_n + 2 * stack->margin_cells;
    const i32 mask_m = stack->grid_m + 2 * stack->margin_cells;
    const i64 points = grid_point_count(mask_n, mask_m);
    const Owned<u8[]> drawn = memory_scratch_zeroed<u8>(points);
    Owned<u8[]> exposed = memory_scratch_zeroed<u8>(points);
    const MaskLayer layer = {static_cast<u32>(step->mask_id),
                             step->one_datatype ? step->mask_datatype : EVERY_DATATYPE};
    *critical = mask_rasterize(stack->polygons, drawn.get(), mask_n, mask_m, stack->spacing, layer,
                               static_cast<u32>(step->mask_type));
    const Owned<Disc> disc(
        disc_create(stack->offsets, stack->offset_count, stack->spacing, step->resolution * 0.5F));
    mask_apply_resolution(disc.get(), drawn.get(), exposed.get(), mask_n, mask_m);
    return exposed;
}

static void resist_develop(Stack *stack, const u8 *mask, f32 mean, i32 angle_degrees, Layer *layer) {
    TaperInput input = {};
    input.offsets = stack->offsets;
    input.offset_count = stack->offset_count;
    input.spacing = stack->spacing;
    input.grid_n = stack->grid_n;
    input.grid_m = stack->grid_m;
    input.padding = stack->margin_cells;
    input.mask = mask;
    input.mean = mean;
    input.angle_degrees = angle_degrees;
    taper_apply(&input, layer->bottom, layer->top, stack->cells, stack->layer_count);
}

void photo_run(Stack *stack, const ProcessStep *step) {
    assert(stack != nullptr && step != nullptr);
    i32 angle_degrees = truncate_i32(static_cast<f64>(step->taper));
    Owned<Layer> layer(film_create(stack, step, RESIST_MATERIAL));
    const f32 mean = film_coat(stack, step, layer.get());
    f32 critical = 0.0F;
    const Owned<u8[]> mask = mask_expose(stack, step, &critical);
    if (step->thickness > critical && angle_degrees < 90) {
        console_append_narrow(
            "WARNING: CD of layer is smaller than photo resist thickness: clipping taper angle to 90 "
            "degrees\r\n");
        angle_degrees = 90;
    }
    resist_develop(stack, mask.get(), mean, angle_degrees, layer.get());
    stack_append_layer(stack, layer.release());
    layer_smooth_disc(stack, step->rr * step->thickness);
}
