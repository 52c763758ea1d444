#include "sim/kernels/offsets.h"
#include <cassert>
#include <cmath>
#include <cstring>
#include "platform/owned.h"
#include "platform/platform.h"

static constexpr i32 RADIX_BITS = 11;  // three passes cover the 31 bits of a distance
static constexpr i32 RADIX_BUCKETS = 1 << RADIX_BITS;
static constexpr i32 RADIX_PASSES = 3;
static constexpr i32 BATCH = 1 << 20;  // entries between two looks for an interrupt

static i32 batch_end(i32 begin, i32 count) {
    return count - begin > BATCH ? begin + BATCH : count;
}

Owned<GridOffset[]> offsets_create(i32 n, i32 m, f32 spacing, i32 *count) {
    assert(n > 0 && m > 0 && count != nullptr);
    const i64 entries = (2 * static_cast<i64>(n) - 1) * (2 * static_cast<i64>(m) - 1);
    // The count is an i32; a larger table is treated as lack of memory.
    Owned<GridOffset[]> offsets = memory_scratch<GridOffset>(entries <= I32_MAX ? entries : I64_MAX);
    GridOffset *next = offsets.get();
    for (i32 dy = 1 - m; dy < m && !platform_interrupted(); ++dy) {
        const f32 y = static_cast<f32>(dy) * spacing;
        const f32 y_squared = y * y;
        for (i32 dx = 1 - n; dx < n; ++dx) {
            const f32 x = static_cast<f32>(dx) * spacing;
            const f32 x_squared = x * x;
            const f32 sum = x_squared + y_squared;
            *next++ = {dx, dy, std::sqrt(sum)};
        }
    }
    *count = static_cast<i32>(entries);
    return offsets;
}

static u32 distance_bits(f32 distance) {
    u32 bits = 0;
    std::memcpy(&bits, &distance, sizeof(bits));
    return bits;
}

// Takes from the left run while the right distance is not smaller, so equal distances keep their
// order, and so that a nan distance has a defined place too.
static void offsets_merge_runs(const GridOffset *left, const GridOffset *middle, const GridOffset *end,
                               GridOffset *out) {
    const GridOffset *right = middle;
    while (left < middle && right < end) {
        *out++ = right->distance >= left->distance ? *left++ : *right++;
    }
    while (left < middle) {
        *out++ = *left++;
    }
    while (right < end) {
        *out++ = *right++;
    }
}

// Bottom-up merge sort; the only one whose order of nan distances is defined.
static void offsets_merge_sort(GridOffset *offsets, GridOffset *scratch, i64 count) {
    for (i64 width = 1; width < count; width *= 2) {
        for (i64 start = 0; start + width < count && !platform_interrupted(); start += 2 * width) {
            const i64 end = start + 2 * width < count ? start + 2 * width : count;
            offsets_merge_runs(offsets + start, offsets + start + width, offsets + end, scratch);
            std::memcpy(offsets + start, scratch, static_cast<size_t>(end - start) * sizeof(GridOffset));
        }
    }
}

// Counts every digit of every distance in one pass. False when a distance is negative, -0.0 or nan:
// the bits of the others, and of them alone, order as the distances do.
static bool offsets_count_digits(const GridOffset *offsets, i32 count, i32 *digits) {
    static constexpr u32 INFINITY_BITS = 0x7F800000U;
    std::memset(digits, 0, sizeof(i32) * RADIX_PASSES * RADIX_BUCKETS);
    u32 largest = 0;
    for (i32 i = 0; i < count && !platform_interrupted();) {
        for (const i32 end = batch_end(i, count); i < end; ++i) {
            const u32 bits = distance_bits(offsets[i].distance);
            largest = bits > largest ? bits : largest;
            for (i32 pass = 0; pass < RADIX_PASSES; ++pass) {
                digits[pass * RADIX_BUCKETS +
                       static_cast<i32>(bits >> (pass * RADIX_BITS) & (RADIX_BUCKETS - 1))]++;
            }
        }
    }
    return largest <= INFINITY_BITS;
}

// One stable pass by one digit. False when all entries share that digit and nothing was moved.
static bool offsets_radix_pass(const GridOffset *from, GridOffset *to, i32 count, i32 shift,
                               const i32 *digits) {
    i32 starts[RADIX_BUCKETS];
    i32 start = 0;
    for (i32 bucket = 0; bucket < RADIX_BUCKETS; ++bucket) {
        if (digits[bucket] == count) {
            return false;
        }
        starts[bucket] = start;
        start += digits[bucket];
    }
    for (i32 i = 0; i < count && !platform_interrupted();) {
        for (const i32 end = batch_end(i, count); i < end; ++i) {
            const u32 digit = distance_bits(from[i].distance) >> shift & (RADIX_BUCKETS - 1);
            to[starts[digit]++] = from[i];
        }
    }
    return true;
}

// Passes over the digits from the lowest up; for distances whose bits order as they do.
static void offsets_radix_sort(GridOffset *offsets, GridOffset *scratch, i32 count, const i32 *digits) {
    GridOffset *from = offsets;
    GridOffset *to = scratch;
    // The digits of a count that was given up are not those of the table.
    for (i32 pass = 0; pass < RADIX_PASSES && !platform_interrupted(); ++pass) {
        const i32 *pass_digits = digits + static_cast<size_t>(pass) * RADIX_BUCKETS;
        if (offsets_radix_pass(from, to, count, pass * RADIX_BITS, pass_digits)) {
            GridOffset *swapped = from;
            from = to;
            to = swapped;
        }
    }
    if (from != offsets) {
        std::memcpy(offsets, from, static_cast<size_t>(count) * sizeof(GridOffset));
    }
}

void offsets_sort_by_distance(GridOffset *offsets, i32 count) {
    assert(count >= 0);
    if (offsets == nullptr || count < 3) {
        return;
    }
    const Owned<GridOffset[]> scratch = memory_scratch<GridOffset>(count);
    const Owned<i32[]> digits = memory_scratch<i32>(static_cast<i64>(RADIX_PASSES) * RADIX_BUCKETS);
    if (offsets_count_digits(offsets, count, digits.get())) {
        offsets_radix_sort(offsets, scratch.get(), count, digits.get());
    } else {
        offsets_merge_sort(offsets, scratch.get(), count);
    }
}

bool offsets_are_sorted(const GridOffset *offsets, i32 count) {
    const i32 step = count / 256 + 1;
    for (i32 i = step; i < count; i += step) {
        if (offsets[i - step].distance > offsets[i].distance) {
            return false;  // nan has its own order
        }
    }
    return true;
}
