#include "export/page_plane.h"

#include <cassert>
#include <cmath>

static constexpr f64 MOST_QUANTA = 1e6;

// Adding and subtracting it rounds what is below 2^51 to a whole number, halves to even.
static constexpr f64 ROUNDER = 6755399441055744.0;  // 1.5 * 2^52

f64 page_plane_quanta(f64 largest) {
    f64 fewer = 1.0;
    while (std::isfinite(largest) && largest * MOST_QUANTA > fewer * PAGE_LARGEST_HEIGHT) {
        fewer *= 10.0;
    }
    return MOST_QUANTA / fewer;
}

// The product of an f32 and a power of ten from 1 to 10^6 is exact.
void page_plane_quantize(const f32 *heights, i64 count, f64 quanta, i32 *out) {
    assert(heights != nullptr && quanta > 0 && out != nullptr);
    const f64 largest = PAGE_LARGEST_HEIGHT;
    for (i64 i = 0; i < count; ++i) {
        f64 value = static_cast<f64>(heights[i]) * quanta;
        value = std::isnan(value) ? 0.0 : value;
        value = value < largest ? value : largest;
        value = value > -largest ? value : -largest;
        out[i] = static_cast<i32>(value + ROUNDER - ROUNDER);
    }
}

static u32 fold_sign(u32 value) {
    return (value << 1) ^ (value >> 31 != 0 ? ~0U : 0U);
}

// A row's differences from the reference.
static void row_difference(const i32 *row, const i32 *reference, i32 grid_n, u32 *out) {
    for (i32 n = 0; n < grid_n; ++n) {
        out[n] = static_cast<u32>(row[n]) - (reference != nullptr ? static_cast<u32>(reference[n]) : 0U);
    }
}

i64 page_plane_remainder(const i32 *plane, const i32 *reference, i32 grid_n, i32 grid_m, u32 *out) {
    assert(plane != nullptr && grid_n > 0 && grid_m > 0 && out != nullptr);
    for (i32 m = 0; m < grid_m; ++m) {
        const i64 start = i64{m} * grid_n;
        row_difference(plane + start, reference != nullptr ? reference + start : nullptr, grid_n,
                       out + start);
    }
    // From the last point to the first, so that the neighbours are still differences.
    i64 count = 0;
    for (i32 m = grid_m - 1; m >= 0; --m) {
        u32 *row = out + i64{m} * grid_n;
        const u32 *front = m > 0 ? row - grid_n : nullptr;
        for (i32 n = grid_n - 1; n > 0; --n) {
            const u32 rise = row[n] - row[n - 1];
            row[n] = fold_sign(front != nullptr ? rise - (front[n] - front[n - 1]) : rise);
            count += row[n] != 0 ? 1 : 0;
        }
        row[0] = fold_sign(front != nullptr ? row[0] - front[0] : row[0]);
        count += row[0] != 0 ? 1 : 0;
    }
    return count;
}

i32 page_plane_bytes(const u32 *values, i64 count) {
    assert(values != nullptr);
    u32 used = 0;
    for (i64 i = 0; i < count; ++i) {
        used |= values[i];
    }
    i32 bytes = 0;
    for (; used != 0; used >>= 8) {
        ++bytes;
    }
    return bytes;
}

void page_plane_byte(const u32 *values, i64 count, i32 index, u8 *out) {
    assert(values != nullptr && index >= 0 && index < 4 && out != nullptr);
    for (i64 i = 0; i < count; ++i) {
        out[i] = static_cast<u8>(values[i] >> (8 * index));
    }
}
