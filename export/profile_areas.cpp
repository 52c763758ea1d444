#include "export/profile_areas.h"

#include <algorithm>
#include <cassert>
#include <cmath>

// Spans of neighbouring stations that share a side become one area: each span knows another of its area, up
// to the one that stands for all.
static i32 find_root(i32 *parent, i32 span) {
    while (parent[span] != span) {
        parent[span] = parent[parent[span]];
        span = parent[span];
    }
    return span;
}

static void collect_spans(const StationPieces *pieces, ProfileAreas *areas, i32 *regions) {
    for (i32 station = 0; station < pieces->station_count; ++station) {
        areas->first[station] = areas->span_count;
        for (i32 i = pieces->first[station]; i < pieces->first[station + 1]; ++i) {
            const StationPiece *piece = &pieces->items[i];
            AreaSpan *below =
                areas->span_count > areas->first[station] ? &areas->spans[areas->span_count - 1] : nullptr;
            if (below != nullptr && regions[areas->span_count - 1] == piece->region &&
                below->left_high == piece->left_low && below->right_high == piece->right_low) {
                below->left_high = piece->left_high;
                below->right_high = piece->right_high;
                continue;
            }
            regions[areas->span_count] = piece->region;
            areas->spans[areas->span_count++] = {
                station, -1, piece->left_low, piece->left_high, piece->right_low, piece->right_high};
        }
    }
    areas->first[pieces->station_count] = areas->span_count;
}

// Joins the spans of a station with those of the station before it.
static void connect_station(const ProfileAreas *areas, const i32 *regions, i32 station, i32 *parent) {
    for (i32 i = areas->first[station]; i < areas->first[station + 1]; ++i) {
        for (i32 j = areas->first[station - 1]; j < areas->first[station]; ++j) {
            const f64 low = std::max(areas->spans[i].left_low, areas->spans[j].right_low);
            const f64 high = std::min(areas->spans[i].left_high, areas->spans[j].right_high);
            if (regions[i] == regions[j] && high > low) {
                parent[find_root(parent, i)] = find_root(parent, j);
            }
        }
    }
}

static f64 span_size(const AreaSpan *span) {
    return 0.5 * (span->left_high - span->left_low + span->right_high - span->right_low);
}

ProfileAreas profile_areas_create(const StationPieces *pieces) {
    assert(pieces != nullptr);
    ProfileAreas areas = {};
    areas.station_count = pieces->station_count;
    areas.spans = memory_scratch<AreaSpan>(pieces->count);
    areas.first = memory_scratch_zeroed<i32>(i64{pieces->station_count} + 1);
    const Owned<i32[]> regions = memory_scratch<i32>(pieces->count);
    collect_spans(pieces, &areas, regions.get());
    const Owned<i32[]> parent = memory_scratch<i32>(areas.span_count);
    for (i32 i = 0; i < areas.span_count; ++i) {
        parent[i] = i;
    }
    for (i32 station = 1; station < areas.station_count; ++station) {
        connect_station(&areas, regions.get(), station, parent.get());
    }
    const Owned<i32[]> area_of = memory_scratch<i32>(areas.span_count);
    std::fill(area_of.get(), area_of.get() + areas.span_count, -1);
    for (i32 i = 0; i < areas.span_count; ++i) {
        AreaSpan *span = &areas.spans[i];
        const i32 root = find_root(parent.get(), i);
        if (area_of[root] < 0) {
            area_of[root] = areas.count;
            array_append(&areas.items, &areas.count, &areas.capacity,
                         {regions[i], span->station, span->station, 0.0});
        }
        span->area = area_of[root];
        ProfileArea *area = &areas.items[span->area];
        area->last_station = span->station;
        area->size += span_size(span);
    }
    return areas;
}

static f64 middle_station(const ProfileArea *area) {
    return 0.5 * (static_cast<f64>(area->first_station) + static_cast<f64>(area->last_station) + 1.0);
}

AreaPlace profile_area_middle(const ProfileAreas *areas, i32 area) {
    assert(areas != nullptr && area >= 0 && area < areas->count);
    const f64 middle = middle_station(&areas->items[area]);
    const AreaSpan *best = nullptr;
    f64 best_distance = 0.0;
    for (i32 i = 0; i < areas->span_count; ++i) {
        const AreaSpan *span = &areas->spans[i];
        const f64 distance = std::fabs(static_cast<f64>(span->station) + 0.5 - middle);
        if (span->area == area && (best == nullptr || span_size(span) > span_size(best) ||
                                   (span_size(span) == span_size(best) && distance < best_distance))) {
            best = span;
            best_distance = distance;
        }
    }
    assert(best != nullptr);  // every area has a span
    return {static_cast<f64>(best->station) + 0.5,
            0.25 * (best->left_low + best->left_high + best->right_low + best->right_high)};
}

// A box in the making: what all spans so far have in common.
struct Room {
    f64 low, high;
};

static Room span_room(const AreaSpan *span) {
    return {std::max(span->left_low, span->right_low), std::min(span->left_high, span->right_high)};
}

// The widest room that a span of the station leaves of a room.
static Room narrow_room(const ProfileAreas *areas, i32 area, i32 station, Room room) {
    Room best = {0.0, -1.0};
    for (i32 i = areas->first[station]; i < areas->first[station + 1]; ++i) {
        if (areas->spans[i].area == area) {
            const Room own = span_room(&areas->spans[i]);
            const Room common = {std::max(own.low, room.low), std::min(own.high, room.high)};
            best = common.high - common.low > best.high - best.low ? common : best;
        }
    }
    return best;
}

bool profile_area_find_room(const ProfileAreas *areas, i32 area, i32 stations, f64 height, AreaPlace *place) {
    assert(areas != nullptr && area >= 0 && area < areas->count && stations > 0 && place != nullptr);
    const ProfileArea *item = &areas->items[area];
    const f64 middle = middle_station(item);
    f64 best_score = -INFINITY;
    const i32 stride = std::max(1, stations / 8);
    for (i32 start = item->first_station; start + stations - 1 <= item->last_station; start += stride) {
        for (i32 i = areas->first[start]; i < areas->first[start + 1]; ++i) {
            if (areas->spans[i].area != area) {
                continue;
            }
            Room room = span_room(&areas->spans[i]);
            for (i32 next = 1; next < stations && room.high - room.low >= height; ++next) {
                room = narrow_room(areas, area, start + next, room);
            }
            if (room.high - room.low < height) {
                continue;
            }
            // Some air above and below is worth more than the middle; more of it is worth nothing.
            const f64 center = static_cast<f64>(start) + 0.5 * static_cast<f64>(stations);
            const f64 comfort = std::min((room.high - room.low) / height, 2.0);
            const f64 score = comfort - std::fabs(center - middle) / static_cast<f64>(areas->station_count);
            if (score > best_score) {
                best_score = score;
                *place = {center, 0.5 * (room.low + room.high)};
            }
        }
    }
    return best_score > -INFINITY;
}
