#include "sim/stack_replay.h"

#include <cassert>

#include "log/log.h"
#include "platform/memory.h"
#include "sim/kernels/grid.h"
#include "sim/stack_layers.h"
#include "sim/stack_setup.h"
#include "sim/stack_surface.h"
#include "sim/step_execute.h"

static constexpr i64 LAYERS_UNDER_WAY = 4;  // what a step takes besides those that it leaves

i64 stack_replay_point_bytes(const Stack *run) {
    assert(run != nullptr);
    const i64 layer = 2 * i64{sizeof(f32)};
    return (i64{run->layer_count} + LAYERS_UNDER_WAY) * layer + i64{sizeof(GridCell)};
}

Stack *stack_replay_create(const Stack *run) {
    assert(run != nullptr && run->steps != nullptr && run->offsets != nullptr && run->cells != nullptr);
    Stack *replay = memory_new_zeroed<Stack>();
    *replay = *run;
    replay->cells = memory_new_zeroed<GridCell>(stack_point_count(run));
    replay->layers = memory_new_zeroed<Layer *>(run->layer_capacity);
    replay->layer_count = 0;
    replay->live_layer_count = 0;
    replay->max_height = 0.0F;
    replay->dump_failed = 0;
    replay->line_vertices = nullptr;
    replay->line_vertex_capacity = 0;
    replay->line_vao = replay->line_vbo = 0;
    return replay;
}

void stack_replay_free(Stack *replay) {
    if (replay == nullptr) {
        return;
    }
    replay->offsets = nullptr;
    replay->steps = nullptr;
    replay->polygons = nullptr;
    replay->cell_name = nullptr;
    replay->process_text = nullptr;
    stack_free(replay);
}

void stack_replay_step(Stack *replay, i32 index) {
    assert(replay != nullptr && index >= 0 && index < replay->steps->count);
    const ProcessStep *step = replay->steps->items[index];
    if (step->kind == STEP_DUMP) {
        return;
    }
    const bool before = console_mute(true);
    step_execute(replay, step);
    console_mute(before);
    replay->max_height = stack_largest_height(replay);
    stack_drop_empty_layers(replay);
    stack_settle_layers(replay);
    replay->live_layer_count = stack_count_layers(replay);
}
