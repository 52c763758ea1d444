#include "plain_dump.h"
#include "sim/layer.h"
#include "sim/stack_setup.h"

void plain_dump(std::FILE *file, const Stack *stack) {
    for (i32 n = 0; n < stack->grid_n; n += 20) {
        for (i32 m = 0; m < stack->grid_m; ++m) {
            const i64 point = i64{m} * stack->grid_n + n;
            std::fprintf(file, "\nTOPLAYER: %d\tHEIGHT: %.10f\n", stack->cells[point].top_layer,
                         static_cast<f64>(stack->cells[point].height));
            for (i32 slot = 0; slot < stack->layer_count; ++slot) {
                const Layer *layer = stack->layers[slot];
                if (layer == nullptr) {
                    continue;
                }
                const f32 thickness = layer->top[point] - layer->bottom[point];
                std::fprintf(file, "M: %d\tN: %d\tL: %d\tBOT: %f\tTOP: %f\tTHI: %.10f\n", m, n, slot,
                             static_cast<f64>(layer->bottom[point]), static_cast<f64>(layer->top[point]),
                             static_cast<f64>(thickness));
            }
            std::fputc('\n', file);
        }
        std::fputs("\n\n", file);
    }
}
