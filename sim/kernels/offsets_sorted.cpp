#include "sim/kernels/offsets_sorted.h"
#include <cassert>
#include <cmath>
#include <utility>
#include "platform/owned.h"
#include "platform/platform.h"

static constexpr i64 BATCH = i64{1} << 20;  // entries between two looks for an interrupt

// The neighbours with offsets from 0 up, row by row. Null when a distance is not a number: such ones have a
// place in the order that no part of the table tells.
static Owned<GridOffset[]> quarter_create(i32 n, i32 m, f32 spacing) {
    Owned<GridOffset[]> quarter = memory_scratch<GridOffset>(i64{n} * m);
    GridOffset *next = quarter.get();
    bool numbers = true;
    for (i32 dy = 0; dy < m && !platform_interrupted(); ++dy) {
        const f32 y = static_cast<f32>(dy) * spacing;
        const f32 y_squared = y * y;
        for (i32 dx = 0; dx < n; ++dx) {
            const f32 x = static_cast<f32>(dx) * spacing;
            const f32 x_squared = x * x;
            const f32 sum = x_squared + y_squared;
            const f32 distance = std::sqrt(sum);
            numbers = numbers && !std::isnan(distance);
            *next++ = {dx, dy, distance};
        }
    }
    return numbers ? std::move(quarter) : nullptr;
}

// Entries of the quarter with one dy, by ascending dx.
struct QuarterRow {
    const GridOffset *begin, *end;
};

// Both sides of a row, from left to right, as row dy of the table.
static GridOffset *append_row(QuarterRow row, i32 dy, GridOffset *out) {
    const f32 distance = row.begin->distance;
    for (const GridOffset *next = row.end; next-- > row.begin;) {
        if (next->dx > 0) {
            *out++ = {-next->dx, dy, distance};
        }
    }
    for (const GridOffset *next = row.begin; next < row.end; ++next) {
        *out++ = {next->dx, dy, distance};
    }
    return out;
}

// All neighbours at one distance in the order of the whole table: rows from below up.
static GridOffset *append_distance(const GridOffset *begin, const GridOffset *end, GridOffset *out) {
    for (const GridOffset *last = end; last > begin;) {
        const GridOffset *first = last - 1;
        while (first > begin && (first - 1)->dy == first->dy) {
            --first;
        }
        if (first->dy > 0) {
            out = append_row({first, last}, -first->dy, out);
        }
        last = first;
    }
    for (const GridOffset *first = begin; first < end;) {
        const GridOffset *last = first + 1;
        while (last < end && last->dy == first->dy) {
            ++last;
        }
        out = append_row({first, last}, first->dy, out);
        first = last;
    }
    return out;
}

static void append_all(const GridOffset *quarter, i64 count, GridOffset *out) {
    for (i64 i = 0, look = 0; i < count;) {
        if (i >= look) {
            if (platform_interrupted()) {
                return;
            }
            look = i + BATCH;
        }
        i64 end = i + 1;
        while (end < count && quarter[end].distance == quarter[i].distance) {
            ++end;
        }
        out = append_distance(quarter + i, quarter + end, out);
        i = end;
    }
}

Owned<GridOffset[]> offsets_create_sorted(i32 n, i32 m, f32 spacing, i32 *count) {
    assert(n > 0 && m > 0 && count != nullptr);
    const i64 entries = (2 * i64{n} - 1) * (2 * i64{m} - 1);
    const Owned<GridOffset[]> quarter = entries <= I32_MAX ? quarter_create(n, m, spacing) : nullptr;
    if (quarter == nullptr) {
        Owned<GridOffset[]> offsets = offsets_create(n, m, spacing, count);
        offsets_sort_by_distance(offsets.get(), *count);
        return offsets;
    }
    offsets_sort_by_distance(quarter.get(), n * m);
    Owned<GridOffset[]> offsets = memory_scratch<GridOffset>(entries);
    *count = static_cast<i32>(entries);
    // The quarter that an interrupt leaves is none, and could tell of more entries than there is room for.
    append_all(quarter.get(), i64{n} * m, offsets.get());
    return offsets;
}
