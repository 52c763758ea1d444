#include "platform/trigonometry.h"
#include "reference.h"

namespace reference {

void taper(const TaperInput *input, const f32 *bottom, f32 *top, GridCell *cells, i32 top_layer) {
    const i32 mask_n = input->grid_n + 2 * input->padding;
    const i32 mask_m = input->grid_m + 2 * input->padding;
    const f64 tangent = exact_tan(static_cast<f64>(input->angle_degrees) * PI / 180.0);
    for (i32 m = 0; m < input->grid_m; ++m) {
        for (i32 n = 0; n < input->grid_n; ++n) {
            const i64 index = static_cast<i64>(m) * input->grid_n + n;
            const i32 i = n + input->padding;
            const i32 j = m + input->padding;
            if (input->mask[static_cast<i64>(j) * mask_n + i] == 0 || bottom[index] >= top[index]) {
                top[index] = bottom[index];
                continue;
            }
            const f32 above = top[index] - input->mean;
            const f32 d = static_cast<f32>(static_cast<f64>(above) / tangent);
            for (i32 k = 0; k < input->offset_count; ++k) {
                const GridOffset entry = input->offsets[k];
                if (!(entry.distance < d)) {
                    break;
                }
                const i32 column = i + entry.dx;
                const i32 row = j + entry.dy;
                if (column < 0 || column >= mask_n || row < 0 || row >= mask_m ||
                    input->mask[static_cast<i64>(row) * mask_n + column] != 0) {
                    continue;
                }
                const f64 t = static_cast<f64>(top[index]);
                const f64 lower =
                    t - ((t - static_cast<f64>(input->mean)) - static_cast<f64>(entry.distance) * tangent);
                top[index] =
                    lower > static_cast<f64>(bottom[index]) ? static_cast<f32>(lower) : bottom[index];
                break;
            }
            cells[index].height = top[index];
            cells[index].top_layer = top_layer;
        }
    }
}

void etch_lateral(const EtchStack *stack, const PointLists &disc) {
    const i64 count = static_cast<i64>(stack->grid_n) * stack->grid_m;
    std::vector<f32> heights;
    for (i64 i = 0; i < count; ++i) {
        heights.push_back(stack->cells[i].height);
    }
    std::vector<f32> eroded(heights.size());
    erode(disc, heights.data(), eroded.data(), stack->grid_n, stack->grid_m);
    for (i64 i = 0; i < count; ++i) {
        const f32 level = eroded[static_cast<size_t>(i)];
        if (!(level < stack->cells[i].height)) {
            continue;
        }
        for (i32 slot = stack->layer_count - 1; slot > 0; --slot) {
            const EtchLayer *layer = &stack->layers[slot];
            if (layer->top == nullptr || layer->top[i] - layer->bottom[i] == 0.0F) {
                continue;
            }
            if (level >= layer->top[i]) {
                break;
            }
            if (layer->etch_class == ETCH_STOPS) {
                stack->cells[0].height = layer->top[i];
                stack->cells[0].top_layer = slot;
                continue;
            }
            if (layer->bottom[i] < level) {
                layer->top[i] = level;
                stack->cells[0].height = level;
                stack->cells[0].top_layer = slot;
                break;
            }
            layer->top[i] = layer->bottom[i];
        }
    }
}

void etch_vertical(const EtchStack *stack, f32 depth) {
    const i64 count = static_cast<i64>(stack->grid_n) * stack->grid_m;
    for (i64 i = 0; i < count; ++i) {
        f32 budget = depth;
        i32 stop = -1;
        for (i32 slot = stack->layer_count - 1; slot >= 0 && stop < 0; --slot) {
            const EtchLayer *layer = &stack->layers[slot];
            if (layer->top == nullptr || layer->top[i] == layer->bottom[i]) {
                continue;
            }
            const f32 thickness = layer->top[i] - layer->bottom[i];
            if (layer->etch_class == ETCH_STOPS) {
                stop = slot;
            } else if (layer->etch_class == ETCH_TARGET) {
                if (thickness > budget) {
                    layer->top[i] = layer->top[i] - budget;
                    stop = slot;
                } else {
                    layer->top[i] = layer->bottom[i];
                    budget = budget - thickness;
                }
            } else {
                const f32 twice = thickness * 2.0F;
                if (twice > budget) {
                    budget = budget * 0.5F;
                    layer->top[i] = layer->top[i] - budget;
                    stop = slot;
                } else {
                    layer->top[i] = layer->bottom[i];
                    budget = budget - twice;
                }
            }
        }
        if (stop >= 0) {
            stack->cells[i].height = stack->layers[stop].top[i];
            stack->cells[i].top_layer = stop;
        }
    }
}

}  // namespace reference
