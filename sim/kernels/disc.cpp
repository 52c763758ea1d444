#include "sim/kernels/disc.h"
#include <cassert>
#include <cmath>
#include "platform/memory.h"

Owned<DiscPoint[]> offsets_disc(const GridOffset *offsets, i32 offset_count, f32 radius, i32 *count) {
    assert(count != nullptr && offsets_are_sorted(offsets, offset_count));
    i32 used = 0;
    while (used < offset_count && offsets[used].distance <= radius) {
        ++used;
    }
    Owned<DiscPoint[]> points = memory_scratch<DiscPoint>(used);
    for (i32 i = 0; i < used; ++i) {
        points.get()[i] = {offsets[i].dx, offsets[i].dy};
    }
    *count = used;
    return points;
}

// Whether the point one column to the right of the entry lies within the radius.
static bool right_neighbour_within(const GridOffset *entry, f32 spacing, f32 radius) {
    const i64 dx = static_cast<i64>(entry->dx) + 1;
    const i64 dy = entry->dy;
    const f32 root = std::sqrt(static_cast<f32>(dx * dx + dy * dy));
    const f32 distance = spacing * root;
    return distance <= radius;
}

// A distance that no edge entry exceeds, in micrometres.
// An edge entry lies at most one spacing further out than its right neighbour, which is within the
// radius. Both rounded distances are within 2^-21 of the true ones as long as no square leaves the
// range of normal numbers, so for radii up to 100,000 spacings rounding adds less than a tenth of a
// spacing, and radius + 2 spacings is safe. For all else no limit is known and the table is read whole.
static f64 disc_edge_limit(f32 spacing, f32 radius) {
    const bool ordinary = spacing >= 1e-12F && spacing <= 1e12F && radius >= 0.0F;
    if (!ordinary || radius > spacing * 100000.0F) {
        return HUGE_VAL;
    }
    return static_cast<f64>(radius) + 2.0 * static_cast<f64>(spacing);
}

Owned<DiscPoint[]> offsets_disc_edge(const GridOffset *offsets, i32 offset_count, f32 spacing, f32 radius,
                                     i32 *count) {
    assert(count != nullptr && offsets_are_sorted(offsets, offset_count));
    const f64 limit = disc_edge_limit(spacing, radius);
    DiscPoint *points = nullptr;
    i32 capacity = 0;
    *count = 0;
    for (i32 i = 0; i < offset_count; ++i) {
        const GridOffset *entry = &offsets[i];
        if (static_cast<f64>(entry->distance) > limit) {
            break;
        }
        if (entry->distance > radius && right_neighbour_within(entry, spacing, radius)) {
            array_append(&points, count, &capacity, DiscPoint{entry->dx, entry->dy});
        }
    }
    return Owned<DiscPoint[]>(points);
}

Disc *disc_create(const GridOffset *offsets, i32 offset_count, f32 spacing, f32 radius) {
    auto *disc = memory_new_zeroed<Disc>();
    disc->points = offsets_disc(offsets, offset_count, radius, &disc->count).release();
    disc->edge = offsets_disc_edge(offsets, offset_count, spacing, radius, &disc->edge_count).release();
    return disc;
}

void disc_free(Disc *disc) {
    if (disc == nullptr) {
        return;
    }
    memory_free(disc->points);
    memory_free(disc->edge);
    memory_free(disc);
}
