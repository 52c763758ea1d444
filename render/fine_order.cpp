#include "render/fine_order.h"

#include <algorithm>
#include <cassert>
#include "platform/memory.h"

static constexpr i64 FIRST_CAPACITY = 4096;

i64 fine_order_cell(i64 grid_n, i64 grid_m, i64 n, i64 m, bool is_b, f32 eye_column) {
    assert(n >= 0 && n + 1 < grid_n && m >= 0 && m + 1 < grid_m);
    const bool is_left = static_cast<f32>(n + 1) <= eye_column;
    const i64 row = grid_m - 2 - m;
    const i64 side = is_left ? n : grid_n + (grid_n - 2 - n);
    // Triangle A is the nearer one: the eye is far on its side of the diagonal.
    return ((row * 2 * grid_n + side) << 1) | (is_b ? 0 : 1);
}

void fine_order_append(FineOrder *order, const OrderedTriangle *triangle) {
    assert(order != nullptr && triangle != nullptr);
    if (order->count == order->capacity) {
        order->capacity = order->capacity > 0 ? order->capacity * 2 : FIRST_CAPACITY;
        order->triangles.reset(static_cast<OrderedTriangle *>(
            memory_reallocate(order->triangles.release(), order->capacity, sizeof(OrderedTriangle))));
    }
    order->triangles[order->count++] = *triangle;
}

static bool is_before(const OrderedTriangle &a, const OrderedTriangle &b) {
    if (a.cell != b.cell) {
        return a.cell < b.cell;
    }
    if (a.is_turned != b.is_turned) {
        return a.is_turned;  // no line of sight meets one of either
    }
    return a.is_turned ? a.surface > b.surface : a.surface < b.surface;
}

static bool is_lower(const OrderedTriangle &a, const OrderedTriangle &b) {
    return a.surface < b.surface;
}

// The end of the triangles of one cell, and whether one of them is turned.
static i64 cell_end(const FineOrder *order, i64 first, bool *has_turned) {
    i64 end = first;
    *has_turned = false;
    while (end < order->count && order->triangles[end].cell == order->triangles[first].cell) {
        *has_turned = *has_turned || order->triangles[end].is_turned;
        ++end;
    }
    return end;
}

// A line of sight goes through cells one after the other in their order. As long as it meets no surface that
// turns away, it meets the surfaces from the uppermost down, in whichever cells it does: so these cells can
// be drawn together, surface by surface.
static void join_cells(FineOrder *order) {
    OrderedTriangle *triangles = order->triangles.get();
    i64 first = 0;  // of the cells that are drawn together
    i64 at = 0;
    while (at < order->count && triangles[at].cell != FINE_CELL_FRONT) {
        bool has_turned = false;
        const i64 end = cell_end(order, at, &has_turned);
        if (has_turned) {
            std::stable_sort(triangles + first, triangles + at, is_lower);
            first = end;
        }
        at = end;
    }
    std::stable_sort(triangles + first, triangles + at, is_lower);
    std::stable_sort(triangles + at, triangles + order->count, is_lower);
}

FineBatches fine_order_batches(FineOrder *order) {
    assert(order != nullptr);
    std::stable_sort(order->triangles.get(), order->triangles.get() + order->count, is_before);
    join_cells(order);
    FineBatches batches = {memory_scratch<u32>(order->count * 3), 0, nullptr, 0, 0};
    for (i64 i = 0; i < order->count; ++i) {
        const OrderedTriangle *triangle = &order->triangles[i];
        if (!triangle->is_shown) {
            continue;
        }
        const i32 film = triangle->surface / 2;
        if (batches.count == 0 || batches.items[batches.count - 1].film != film) {
            array_append(&batches.items, &batches.count, &batches.capacity, {film, batches.index_count, 0});
        }
        for (const u32 vertex : triangle->vertices) {
            batches.indices[batches.index_count++] = vertex;
        }
        batches.items[batches.count - 1].count += 3;
    }
    return batches;
}
