#include "sim/kernels/disc_count.h"
#include <cassert>
#include <cstdlib>
#include "platform/memory.h"

// The number of the disc's points in each row at column 0.
static void count_first_column(DiscCounter *counter, const Disc *disc) {
    const i64 row_count = 2 * static_cast<i64>(counter->grid_m) - 1;
    counter->first_counts = memory_new_zeroed<i64>(row_count + 1);
    for (i32 i = 0; i < disc->count; ++i) {
        const DiscPoint point = disc->points[i];
        if (point.dx >= 0 && point.dx < counter->grid_n && std::abs(point.dy) < counter->grid_m) {
            ++counter->first_counts[point.dy + counter->grid_m];
        }
    }
    for (i64 row = 0; row < row_count; ++row) {
        counter->first_counts[row + 1] += counter->first_counts[row];
    }
}

// Counting sort of the edge by row.
static void sort_edge(DiscCounter *counter, const Disc *disc) {
    const i64 row_count = 2 * static_cast<i64>(counter->grid_m) - 1;
    i32 edge_count = 0;
    const Owned<DiscPoint[]> owned_edge =
        disc_edge_in_grid(disc, counter->grid_n, counter->grid_m, &edge_count);
    const DiscPoint *edge = owned_edge.get();
    counter->edge = memory_new_array<DiscPoint>(edge_count);
    counter->edge_starts = memory_new_zeroed<i32>(row_count + 2);
    for (i32 i = 0; i < edge_count; ++i) {
        ++counter->edge_starts[edge[i].dy + counter->grid_m + 1];
    }
    for (i64 row = 0; row < row_count; ++row) {
        counter->edge_starts[row + 1] += counter->edge_starts[row];
    }
    for (i32 i = 0; i < edge_count; ++i) {
        counter->edge[counter->edge_starts[edge[i].dy + counter->grid_m]++] = edge[i];
    }
}

DiscCounter *disc_counter_create(const Disc *disc, i32 grid_n, i32 grid_m) {
    assert(disc != nullptr && disc->count >= 0 && grid_n > 0 && grid_m > 0);
    auto *counter = memory_new_zeroed<DiscCounter>();
    counter->grid_n = grid_n;
    counter->grid_m = grid_m;
    count_first_column(counter, disc);
    sort_edge(counter, disc);
    counter->differences = memory_new_zeroed<i32>(static_cast<i64>(grid_n) + 1);
    return counter;
}

void disc_counter_free(DiscCounter *counter) {
    if (counter == nullptr) {
        return;
    }
    memory_free(counter->first_counts);
    memory_free(counter->edge);
    memory_free(counter->edge_starts);
    memory_free(counter->differences);
    memory_free(counter);
}

static void counter_add_range(DiscCounter *counter, i32 begin, i32 end, i32 change) {
    begin = begin < 1 ? 1 : begin;
    end = end > counter->grid_n ? counter->grid_n : end;
    if (begin < end) {
        counter->differences[begin] += change;
        counter->differences[end] -= change;
    }
}

// Brings in (sign 1) or takes out (sign -1) the edge points of row dy.
static void counter_change_row(DiscCounter *counter, i32 dy, i32 sign) {
    const i32 row = dy + counter->grid_m - 1;
    for (i32 i = counter->edge_starts[row]; i < counter->edge_starts[row + 1]; ++i) {
        const i32 dx = counter->edge[i].dx;
        counter_add_range(counter, -dx, counter->grid_n - dx, -sign);
        counter_add_range(counter, dx + 1, counter->grid_n + dx + 1, sign);
    }
}

void disc_counter_next_row(DiscCounter *counter, i32 *counts) {
    assert(counter != nullptr && counts != nullptr && counter->row < counter->grid_m);
    const i32 m = counter->row++;
    const i32 grid_m = counter->grid_m;
    // The rows dy of the disc that lie in the grid are -m..M - 1 - m.
    if (m == 0) {
        for (i32 dy = 0; dy < grid_m; ++dy) {
            counter_change_row(counter, dy, 1);
        }
    } else {
        counter_change_row(counter, -m, 1);
        counter_change_row(counter, grid_m - m, -1);
    }
    const i64 first = counter->first_counts[2 * grid_m - 1 - m] - counter->first_counts[grid_m - 1 - m];
    i32 count = static_cast<i32>(first);
    i32 change = 0;
    for (i32 n = 0; n < counter->grid_n; ++n) {
        change += counter->differences[n];
        count += change;
        counts[n] = count;
    }
}
