#include <cmath>
#include "reference.h"

namespace reference {

void taper(const TaperScene *scene, const f32 *bottom, f32 *top, GridCell *cells, i32 top_layer) {
    const i32 mask_n = scene->grid_n + 2 * scene->padding;
    const i32 mask_m = scene->grid_m + 2 * scene->padding;
    const f64 angle = static_cast<f64>(scene->angle_degrees) * 3.141592653589793 / 180.0;
    for (i32 m = 0; m < scene->grid_m; ++m) {
        for (i32 n = 0; n < scene->grid_n; ++n) {
            const i64 index = static_cast<i64>(m) * scene->grid_n + n;
            const i32 i = n + scene->padding;
            const i32 j = m + scene->padding;
            if (scene->mask[static_cast<i64>(j) * mask_n + i] == 0 || bottom[index] >= top[index]) {
                top[index] = bottom[index];
                continue;
            }
            const f32 above = top[index] - scene->mean;
            const f32 d = static_cast<f32>(static_cast<f64>(above) / tan(angle));
            for (i32 k = 0; k < scene->offset_count; ++k) {
                const GridOffset entry = scene->offsets[k];
                if (!(entry.distance < d)) {
                    break;
                }
                const i32 column = i + entry.dx;
                const i32 row = j + entry.dy;
                if (column < 0 || column >= mask_n || row < 0 || row >= mask_m ||
                    scene->mask[static_cast<i64>(row) * mask_n + column] != 0) {
                    continue;
                }
                const f64 t = static_cast<f64>(top[index]);
                const f64 lower =
                    t - ((t - static_cast<f64>(scene->mean)) - static_cast<f64>(entry.distance) * tan(angle));
                top[index] =
                    lower > static_cast<f64>(bottom[index]) ? static_cast<f32>(lower) : bottom[index];
                break;
            }
            cells[index].height = top[index];
            cells[index].top_layer = top_layer;
        }
    }
}

void etch_lateral(const EtchScene *scene, const PointLists &disc) {
    const i64 count = static_cast<i64>(scene->grid_n) * scene->grid_m;
    std::vector<f32> heights;
    for (i64 i = 0; i < count; ++i) {
        heights.push_back(scene->cells[i].height);
    }
    std::vector<f32> eroded(heights.size());
    erode(disc, heights.data(), eroded.data(), scene->grid_n, scene->grid_m);
    for (i64 i = 0; i < count; ++i) {
        const f32 level = eroded[static_cast<size_t>(i)];
        if (!(level < scene->cells[i].height)) {
            continue;
        }
        for (i32 slot = scene->layer_count - 1; slot > 0; --slot) {
            const EtchLayer *layer = &scene->layers[slot];
            if (layer->top == nullptr || layer->top[i] - layer->bottom[i] == 0.0F) {
                continue;
            }
            if (level >= layer->top[i]) {
                break;
            }
            if (layer->etch_class == ETCH_STOPS) {
                scene->cells[0].height = layer->top[i];
                scene->cells[0].top_layer = slot;
                continue;
            }
            if (layer->bottom[i] < level) {
                layer->top[i] = level;
                scene->cells[0].height = level;
                scene->cells[0].top_layer = slot;
                break;
            }
            layer->top[i] = layer->bottom[i];
        }
    }
}

void etch_vertical(const EtchScene *scene, f32 depth) {
    const i64 count = static_cast<i64>(scene->grid_n) * scene->grid_m;
    for (i64 i = 0; i < count; ++i) {
        f32 budget = depth;
        i32 stop = -1;
        for (i32 slot = scene->layer_count - 1; slot >= 0 && stop < 0; --slot) {
            const EtchLayer *layer = &scene->layers[slot];
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
            scene->cells[i].height = scene->layers[stop].top[i];
            scene->cells[i].top_layer = stop;
        }
    }
}

}  // namespace reference
