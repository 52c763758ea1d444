#include "export/profile_outline.h"

#include <algorithm>
#include <cassert>

// The area of a ring, counted from its first point, so that small ones far from the origin keep their digits.
static f64 ring_area(const BorderPoint *points, i32 count, f32 spacing) {
    f64 twice = 0.0;
    for (i32 i = 1; i + 1 < count; ++i) {
        const f64 x0 = static_cast<f64>(points[i].station - points[0].station);
        const f64 x1 = static_cast<f64>(points[i + 1].station - points[0].station);
        const f64 z0 = points[i].height - points[0].height;
        const f64 z1 = points[i + 1].height - points[0].height;
        twice += x0 * z1 - x1 * z0;
    }
    return twice * 0.25 * f64{spacing};
}

// Points of the map, of which those stay that are corners.
static void append_ring(const BorderMap *map, const i32 *path, i32 count, i32 region, f32 spacing,
                        ProfileOutline *outline) {
    const i32 first = outline->point_count;
    for (i32 i = 0; i < count; ++i) {
        if (!border_passes_straight(map, path[i])) {
            array_append(&outline->points, &outline->point_count, &outline->point_capacity,
                         map->points[path[i]]);
        }
    }
    const i32 kept = outline->point_count - first;
    const f64 area = ring_area(outline->points.get() + first, kept, spacing);
    array_append(&outline->rings, &outline->ring_count, &outline->ring_capacity, {region, first, kept, area});
}

// A way around a region, and where it has been.
struct Trace {
    Owned<i32[]> path;  // points
    i32 count, capacity;
    Owned<i32[]> place;  // of each point of the map in the path, or -1
};

// Goes around the region on the left of a side until it is there again. Where the way comes to a point for
// the second time, what lies between becomes a ring of its own, if rings are to be simple.
static void trace_ring(const BorderMap *map, BorderSide start, f32 spacing, OutlineKind kind, Trace *trace,
                       Owned<u8[]> *seen, ProfileOutline *outline) {
    const i32 region = border_region(map, start);
    BorderSide side = start;
    do {
        seen->get()[side] = 1;
        const i32 point = border_start(map, side);
        const i32 before = kind == OUTLINE_SIMPLE ? trace->place[point] : -1;
        if (before >= 0) {
            append_ring(map, trace->path.get() + before, trace->count - before, region, spacing, outline);
            for (i32 i = before + 1; i < trace->count; ++i) {
                trace->place[trace->path[i]] = -1;
            }
            trace->count = before + 1;
        } else {
            trace->place[point] = trace->count;
            array_append(&trace->path, &trace->count, &trace->capacity, point);
        }
        side = border_next(map, side);
    } while (side != start && seen->get()[side] == 0);
    assert(side == start);
    append_ring(map, trace->path.get(), trace->count, region, spacing, outline);
    for (i32 i = 0; i < trace->count; ++i) {
        trace->place[trace->path[i]] = -1;
    }
    trace->count = 0;
}

ProfileOutline profile_outline_create(const BorderMap *map, f32 spacing, OutlineKind kind) {
    assert(map != nullptr && (map->border_count == 0 || map->first_side != nullptr));
    ProfileOutline outline = {};
    Owned<u8[]> seen = memory_scratch_zeroed<u8>(i64{2} * map->border_count);
    Trace trace = {nullptr, 0, 0, memory_scratch<i32>(map->point_count)};
    std::fill(trace.place.get(), trace.place.get() + map->point_count, -1);
    for (BorderSide side = 0; side < 2 * map->border_count; ++side) {
        if (seen[side] == 0 && border_region(map, side) != REGION_OF_AIR) {
            trace_ring(map, side, spacing, kind, &trace, &seen, &outline);
        }
    }
    return outline;
}

// Follows a border from a side on until others meet it or it is closed.
static void follow_border(const BorderMap *map, BorderSide start, Owned<u8[]> *seen,
                          ProfileOutline *outline) {
    const i32 first = outline->point_count;
    const i32 begin = border_start(map, start);
    const bool open = border_degree(map, begin) != 2;
    BorderSide side = start;
    i32 point = begin;
    do {
        seen->get()[side / 2] = 1;
        if (!border_passes_straight(map, point)) {
            array_append(&outline->points, &outline->point_count, &outline->point_capacity,
                         map->points[point]);
        }
        point = border_end(map, side);
        side = border_next(map, side);
    } while (border_degree(map, point) == 2 && point != begin);
    if (open) {
        array_append(&outline->points, &outline->point_count, &outline->point_capacity, map->points[point]);
    }
    array_append(&outline->borders, &outline->border_count, &outline->border_capacity,
                 {first, outline->point_count - first, !open});
}

void profile_outline_add_borders(const BorderMap *map, ProfileOutline *outline) {
    assert(map != nullptr && outline != nullptr);
    Owned<u8[]> seen = memory_scratch_zeroed<u8>(map->border_count);
    for (const bool closed : {false, true}) {
        for (BorderSide side = 0; side < 2 * map->border_count; ++side) {
            if (seen[side / 2] == 0 && (closed || border_degree(map, border_start(map, side)) != 2)) {
                follow_border(map, side, &seen, outline);
            }
        }
    }
}

// Cuts a hole open: from its lowest point at its leftmost station down to the next border. Below that point
// lies the region itself, for a hole that reached further down would have its lowest point there.
static void cut_hole(BorderMap *map, const ProfileOutline *outline, const OutlineRing *ring) {
    BorderPoint corner = outline->points[ring->first];
    for (i32 i = ring->first + 1; i < ring->first + ring->count; ++i) {
        const BorderPoint other = outline->points[i];
        if (other.station < corner.station ||
            (other.station == corner.station && other.height < corner.height)) {
            corner = other;
        }
    }
    i32 point = map->first[corner.station];
    while (map->points[point].height < corner.height) {
        ++point;
    }
    do {
        --point;
        assert(point >= map->first[corner.station]);
        assert(map->left_region[point] == ring->region && map->right_region[point] == ring->region);
        map->is_cut[point] = true;
    } while (border_degree(map, point) == 0);
}

// Cuts a region along the station in the middle of a ring's points. False where the ring reaches from one
// station to the next only.
static bool cut_across(BorderMap *map, const ProfileOutline *outline, const OutlineRing *ring) {
    const BorderPoint *begin = outline->points.get() + ring->first;
    const auto left_of = [](const BorderPoint &a, const BorderPoint &b) { return a.station < b.station; };
    const Owned<i32[]> stations = memory_scratch<i32>(ring->count);
    const i32 lowest = std::min_element(begin, begin + ring->count, left_of)->station;
    const i32 highest = std::max_element(begin, begin + ring->count, left_of)->station;
    if (highest - lowest < 2) {
        return false;
    }
    for (i32 i = 0; i < ring->count; ++i) {
        stations[i] = begin[i].station;
    }
    std::nth_element(stations.get(), stations.get() + ring->count / 2, stations.get() + ring->count);
    const i32 station = std::clamp(stations[ring->count / 2], lowest + 1, highest - 1);
    for (i32 point = map->first[station]; point < map->first[station + 1]; ++point) {
        const bool inside =
            map->left_region[point] == ring->region && map->right_region[point] == ring->region;
        map->is_cut[point] = map->is_cut[point] || inside;
    }
    return true;
}

ProfileOutline profile_outline_create_cut(const StationPieces *pieces, f32 spacing, i32 most_points) {
    assert(pieces != nullptr && most_points >= 4);
    const Owned<BorderMap> map(border_map_create(pieces));
    for (;;) {
        border_map_connect(map.get());
        ProfileOutline outline = profile_outline_create(map.get(), spacing, OUTLINE_KEYHOLE);
        bool cut = false;
        for (i32 i = 0; i < outline.ring_count; ++i) {
            const OutlineRing *ring = &outline.rings[i];
            if (ring->area < 0.0) {
                cut_hole(map.get(), &outline, ring);
                cut = true;
            } else if (ring->count > most_points) {
                cut = cut_across(map.get(), &outline, ring) || cut;
            }
        }
        if (!cut) {
            return outline;
        }
    }
}
