#include "sim/kernels/distance_transform.h"
#include <cassert>
#include "platform/memory.h"
#include "sim/kernels/grid.h"

// Downward pass, then the same upward.
static void measure_columns(const u8 *mask, i32 mask_n, i32 mask_m, i32 *distances) {
    for (i64 m = 0; m < mask_m; ++m) {
        i32 *row = distances + m * mask_n;
        for (i64 n = 0; n < mask_n; ++n) {
            const i32 above = m > 0 ? row[n - mask_n] : -1;
            row[n] = mask[m * mask_n + n] == 0 ? 0 : (above < 0 ? -1 : above + 1);
        }
    }
    for (i64 m = static_cast<i64>(mask_m) - 2; m >= 0; --m) {
        i32 *row = distances + m * mask_n;
        for (i64 n = 0; n < mask_n; ++n) {
            const i32 below = row[n + mask_n];
            if (below >= 0 && (row[n] < 0 || below + 1 < row[n])) {
                row[n] = below + 1;
            }
        }
    }
}

DistanceTransform *distance_transform_create(const u8 *mask, i32 mask_n, i32 mask_m) {
    assert(mask != nullptr && mask_n > 0 && mask_m > 0);
    auto *transform = memory_new_zeroed<DistanceTransform>();
    transform->mask_n = mask_n;
    transform->mask_m = mask_m;
    transform->column_distances = memory_new_array<i32>(grid_point_count(mask_n, mask_m));
    transform->nearest = memory_new_array<i32>(mask_n);
    transform->starts = memory_new_array<i32>(mask_n);
    measure_columns(mask, mask_n, mask_m, transform->column_distances);
    return transform;
}

void distance_transform_free(DistanceTransform *transform) {
    if (transform == nullptr) {
        return;
    }
    memory_free(transform->column_distances);
    memory_free(transform->nearest);
    memory_free(transform->starts);
    memory_free(transform);
}

// Squared distance from column n of the row to the nearest open point of column `from`.
static i64 square_via(const i32 *distances, i64 n, i64 from) {
    const i64 up = distances[from];
    return (n - from) * (n - from) + up * up;
}

// The last column that is at least as near by way of column `left` as of column `right`.
// Never called where that is negative.
static i64 last_of_left(const i32 *distances, i64 left, i64 right) {
    const i64 up_left = distances[left];
    const i64 up_right = distances[right];
    return (right * right - left * left + up_right * up_right - up_left * up_left) / (2 * (right - left));
}

void distance_transform_row(const DistanceTransform *transform, i32 row, i64 *squares) {
    assert(transform != nullptr && squares != nullptr && row >= 0 && row < transform->mask_m);
    const i32 mask_n = transform->mask_n;
    const i32 *distances = transform->column_distances + static_cast<i64>(row) * mask_n;
    i32 *nearest = transform->nearest;
    i32 *starts = transform->starts;
    i32 last = -1;
    for (i32 n = 0; n < mask_n; ++n) {
        if (distances[n] < 0) {
            continue;
        }
        while (last >= 0 &&
               square_via(distances, starts[last], nearest[last]) > square_via(distances, starts[last], n)) {
            --last;
        }
        const i64 start = last < 0 ? 0 : last_of_left(distances, nearest[last], n) + 1;
        if (start < mask_n) {
            ++last;
            nearest[last] = n;
            starts[last] = static_cast<i32>(start);
        }
    }
    for (i32 n = mask_n - 1; n >= 0; --n) {
        squares[n] = last < 0 ? DISTANCE_NONE : square_via(distances, n, nearest[last]);
        if (last > 0 && starts[last] == n) {
            --last;
        }
    }
}
