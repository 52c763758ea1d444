// Rows outside, columns inside. A row is settled layer by layer from the top one down, since the
// presence of one layer along a row is cheap to tell for all its columns together.
#include "sim/stack_surface.h"

#include <cassert>
#include <cstring>

#include "sim/layer.h"
#include "sim/stack_setup.h"

// What a row needs while it is settled.
struct SurfaceRow {
    Owned<u8[]>
        present;  // grid_n + 2, from the column left of the grid on: the layer is at the row or beside it
    Owned<i32[]> slots;  // grid_n: the slot that forms the surface, -1 while none is found
};

// Marks the columns where the layer is present in row m or in one of the rows beside it.
static void mark_present(const Layer *layer, i32 grid_n, i32 grid_m, i32 m, u8 *columns) {
    std::memset(columns, 0, static_cast<size_t>(grid_n));
    const i32 last = m < grid_m - 1 ? m + 1 : m;
    for (i32 row = m > 0 ? m - 1 : 0; row <= last; ++row) {
        const f32 *top = layer->top + static_cast<i64>(row) * grid_n;
        const f32 *bottom = layer->bottom + static_cast<i64>(row) * grid_n;
        for (i32 n = 0; n < grid_n; ++n) {
            const u8 absent = top[n] - bottom[n] == 0.0F ? 1 : 0;
            columns[n] = static_cast<u8>(columns[n] | (absent ^ 1));
        }
    }
}

// Gives the slot to every column without one that lies at or beside a marked column.
// Returns how many columns are still without a slot.
static i32 settle_columns(const SurfaceRow *line, i32 grid_n, i32 slot) {
    const u8 *present = line->present.get();
    i32 *slots = line->slots.get();
    i32 left = 0;
    for (i32 n = 0; n < grid_n; ++n) {
        const bool is_near = (present[n] | present[n + 1] | present[n + 2]) != 0;
        const i32 settled = slots[n] < 0 && is_near ? slot : slots[n];
        slots[n] = settled;
        left += settled < 0 ? 1 : 0;
    }
    return left;
}

static void settle_row(const Stack *stack, i32 m, const SurfaceRow *line) {
    std::memset(line->slots.get(), -1, static_cast<size_t>(stack->grid_n) * sizeof(i32));
    i32 left = stack->grid_n;
    for (i32 slot = stack->layer_count - 1; slot >= 0 && left > 0; --slot) {
        const Layer *layer = stack->layers[slot];
        if (layer != nullptr) {
            mark_present(layer, stack->grid_n, stack->grid_m, m, line->present.get() + 1);
            left = settle_columns(line, stack->grid_n, slot);
        }
    }
}

void stack_update_surface(Stack *stack) {
    assert(stack != nullptr && stack->cells != nullptr && stack->grid_n > 0);
    // The columns outside the grid, first and last of `present`, stay 0.
    const SurfaceRow line = {memory_scratch_zeroed<u8>(static_cast<i64>(stack->grid_n) + 2),
                             memory_scratch<i32>(stack->grid_n)};
    for (i32 m = 0; m < stack->grid_m; ++m) {
        settle_row(stack, m, &line);
        GridCell *cells = stack->cells + static_cast<i64>(m) * stack->grid_n;
        for (i32 n = 0; n < stack->grid_n; ++n) {
            const i32 slot = line.slots.get()[n];
            if (slot >= 0) {
                cells[n] = {stack->layers[slot]->top[static_cast<i64>(m) * stack->grid_n + n], slot};
            }
        }
    }
}

f32 stack_largest_height(const Stack *stack) {
    assert(stack != nullptr && stack->cells != nullptr);
    f32 largest = 0.0F;
    const i64 count = stack_point_count(stack);
    for (i64 i = 0; i < count; ++i) {
        if (stack->cells[i].height > largest) {
            largest = stack->cells[i].height;
        }
    }
    return largest;
}
