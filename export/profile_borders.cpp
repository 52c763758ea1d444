#include "export/profile_borders.h"

#include <algorithm>
#include <cassert>

void border_map_free(BorderMap *map) {
    if (map == nullptr) {
        return;
    }
    memory_free(map->points);
    memory_free(map->first);
    memory_free(map->left_region);
    memory_free(map->right_region);
    memory_free(map->is_cut);
    memory_free(map->borders);
    memory_free(map->first_side);
    memory_free(map->sides);
    memory_free(map->place);
    memory_free(map);
}

static f64 mean(f64 a, f64 b) {
    return (a + b) * 0.5;
}

// Sorts what lies between a station and the next from below; pieces do not overlap.
static void sort_station(StationPiece *begin, StationPiece *end) {
    const auto height = [](const StationPiece &piece) {
        return piece.left_low + piece.left_high + piece.right_low + piece.right_high;
    };
    std::stable_sort(begin, end, [&height](const StationPiece &a, const StationPiece &b) {
        return height(a) < height(b);
    });
}

// The part of a piece between a station and the next. False where the piece is not there.
static bool take_part(const CutPiece *piece, i32 station, i32 region, StationPiece *part) {
    const i32 left = truncate_i32(2.0 * f64{piece->left});
    const i32 right = truncate_i32(2.0 * f64{piece->right});
    if (station < left || station >= right) {
        return false;
    }
    *part = {station, region, piece->left_low, piece->left_high, piece->right_low, piece->right_high};
    if (station > left) {
        part->left_low = mean(piece->left_low, piece->right_low);
        part->left_high = mean(piece->left_high, piece->right_high);
    } else if (station + 1 < right) {
        part->right_low = mean(piece->left_low, piece->right_low);
        part->right_high = mean(piece->left_high, piece->right_high);
    }
    return true;
}

StationPieces station_pieces_create(const CutFace *face, const i32 *regions) {
    assert(face != nullptr && face->grid_n > 0 && (regions != nullptr || face->film_count == 0));
    const i32 stations = 2 * face->grid_n - 1;
    StationPieces pieces = {stations, 0, memory_scratch<StationPiece>(i64{2} * face->piece_count),
                            memory_scratch_zeroed<i32>(i64{stations} + 1)};
    for (i32 station = 0; station + 1 < stations; ++station) {
        const i32 n = station / 2;
        const i32 first = pieces.count;
        for (i32 i = face->first[n]; i < face->first[n + 1]; ++i) {
            const CutPiece *piece = &face->pieces[i];
            StationPiece part = {};
            if (take_part(piece, station, regions[piece->film], &part)) {
                pieces.items[pieces.count++] = part;
            }
        }
        sort_station(pieces.items.get() + first, pieces.items.get() + pieces.count);
        pieces.first[station + 1] = pieces.count;
    }
    pieces.first[stations] = pieces.count;
    return pieces;
}

// The heights of all corners at a station, each once, from below.
static void collect_points(BorderMap *map, i32 station) {
    const StationPieces *pieces = map->pieces;
    BorderPoint *begin = map->points + map->point_count;
    BorderPoint *end = begin;
    for (i32 i = pieces->first[station > 0 ? station - 1 : 0]; i < pieces->first[station + 1]; ++i) {
        const StationPiece *piece = &pieces->items[i];
        const bool begins = piece->station == station;
        *end++ = {station, begins ? piece->left_low : piece->right_low};
        *end++ = {station, begins ? piece->left_high : piece->right_high};
    }
    std::sort(begin, end, [](const BorderPoint &a, const BorderPoint &b) { return a.height < b.height; });
    const auto same = [](const BorderPoint &a, const BorderPoint &b) { return a.height == b.height; };
    map->point_count += static_cast<i32>(std::unique(begin, end, same) - begin);
}

static i32 find_point(const BorderMap *map, i32 station, f64 height) {
    const BorderPoint *begin = map->points + map->first[station];
    const BorderPoint *end = map->points + map->first[station + 1];
    const BorderPoint *found =
        std::lower_bound(begin, end, height, [](const BorderPoint &a, f64 b) { return a.height < b; });
    assert(found != end && found->height == height);
    return static_cast<i32>(found - map->points);
}

BorderMap *border_map_create(const StationPieces *pieces) {
    assert(pieces != nullptr);
    auto *map = memory_new_zeroed<BorderMap>();
    map->pieces = pieces;
    map->points = memory_new_array<BorderPoint>(i64{4} * pieces->count);
    map->first = memory_new_zeroed<i32>(i64{pieces->station_count} + 1);
    for (i32 station = 0; station < pieces->station_count; ++station) {
        collect_points(map, station);
        map->first[station + 1] = map->point_count;
    }
    map->left_region = memory_new_array<i32>(map->point_count);
    map->right_region = memory_new_array<i32>(map->point_count);
    map->is_cut = memory_new_zeroed<bool>(map->point_count);
    std::fill(map->left_region, map->left_region + map->point_count, REGION_OF_AIR);
    std::fill(map->right_region, map->right_region + map->point_count, REGION_OF_AIR);
    for (i32 i = 0; i < pieces->count; ++i) {
        const StationPiece *piece = &pieces->items[i];
        std::fill(map->right_region + find_point(map, piece->station, piece->left_low),
                  map->right_region + find_point(map, piece->station, piece->left_high), piece->region);
        std::fill(map->left_region + find_point(map, piece->station + 1, piece->right_low),
                  map->left_region + find_point(map, piece->station + 1, piece->right_high), piece->region);
    }
    return map;
}

static void append_border(BorderMap *map, const Border &border) {
    array_append(&map->borders, &map->border_count, &map->border_capacity, border);
}

static void append_upright(BorderMap *map) {
    for (i32 point = 0; point < map->point_count; ++point) {
        if (map->left_region[point] != map->right_region[point] || map->is_cut[point]) {
            append_border(map, {point, point + 1, map->left_region[point], map->right_region[point]});
        }
    }
}

static void append_top(BorderMap *map, const StationPiece *piece) {
    append_border(map,
                  {find_point(map, piece->station, piece->left_high),
                   find_point(map, piece->station + 1, piece->right_high), REGION_OF_AIR, piece->region});
}

// The lines between a station and the next, of pieces that lie on each other or have air between them.
static void append_level(BorderMap *map, i32 station) {
    const StationPieces *pieces = map->pieces;
    const StationPiece *below = nullptr;
    for (i32 i = pieces->first[station]; i < pieces->first[station + 1]; ++i) {
        const StationPiece *piece = &pieces->items[i];
        const bool touches =
            below != nullptr && below->left_high == piece->left_low && below->right_high == piece->right_low;
        if (below != nullptr && !touches) {
            append_top(map, below);
        }
        const i32 under = touches ? below->region : REGION_OF_AIR;
        if (under != piece->region) {
            append_border(map, {find_point(map, station, piece->left_low),
                                find_point(map, station + 1, piece->right_low), piece->region, under});
        }
        below = piece;
    }
    if (below != nullptr) {
        append_top(map, below);
    }
}

i32 border_start(const BorderMap *map, BorderSide side) {
    const Border *border = &map->borders[side / 2];
    return side % 2 == 0 ? border->from : border->to;
}

i32 border_end(const BorderMap *map, BorderSide side) {
    return border_start(map, side ^ 1);
}

i32 border_region(const BorderMap *map, BorderSide side) {
    const Border *border = &map->borders[side / 2];
    return side % 2 == 0 ? border->left : border->right;
}

// A number that grows with the direction of a side, counter-clockwise from straight down, and the rise that
// orders sides of one number.
struct Direction {
    i32 quarter;  // 0 down, 1 to the right, 2 up, 3 to the left
    f64 rise;
};

static Direction direction_of(const BorderMap *map, BorderSide side) {
    const BorderPoint *from = &map->points[border_start(map, side)];
    const BorderPoint *to = &map->points[border_end(map, side)];
    const f64 rise = to->height - from->height;
    if (to->station == from->station) {
        return {rise > 0.0 ? 2 : 0, 0.0};
    }
    return to->station > from->station ? Direction{1, rise} : Direction{3, -rise};
}

static void sort_sides(BorderMap *map, i32 point) {
    BorderSide *begin = map->sides + map->first_side[point];
    BorderSide *end = map->sides + map->first_side[point + 1];
    std::sort(begin, end, [map](BorderSide a, BorderSide b) {
        const Direction first = direction_of(map, a);
        const Direction second = direction_of(map, b);
        return first.quarter != second.quarter ? first.quarter < second.quarter : first.rise < second.rise;
    });
    for (BorderSide *at = begin; at < end; ++at) {
        map->place[*at] = static_cast<i32>(at - map->sides);
    }
}

void border_map_connect(BorderMap *map) {
    assert(map != nullptr);
    map->border_count = 0;
    append_upright(map);
    for (i32 station = 0; station + 1 < map->pieces->station_count; ++station) {
        append_level(map, station);
    }
    memory_free(map->first_side);
    memory_free(map->sides);
    memory_free(map->place);
    const i32 side_count = 2 * map->border_count;
    map->first_side = memory_new_zeroed<i32>(i64{map->point_count} + 2);
    map->sides = memory_new_array<BorderSide>(side_count);
    map->place = memory_new_array<i32>(side_count);
    // Counted two places ahead, so that filling moves every start to where it belongs.
    for (BorderSide side = 0; side < side_count; ++side) {
        ++map->first_side[border_start(map, side) + 2];
    }
    for (i32 point = 0; point <= map->point_count; ++point) {
        map->first_side[point + 1] += map->first_side[point];
    }
    for (BorderSide side = 0; side < side_count; ++side) {
        map->sides[map->first_side[border_start(map, side) + 1]++] = side;
    }
    for (i32 point = 0; point < map->point_count; ++point) {
        sort_sides(map, point);
    }
}

BorderSide border_next(const BorderMap *map, BorderSide side) {
    // The first border clockwise from the way back.
    const i32 point = border_end(map, side);
    const i32 back = map->place[side ^ 1];
    return map->sides[back > map->first_side[point] ? back - 1 : map->first_side[point + 1] - 1];
}

i32 border_degree(const BorderMap *map, i32 point) {
    return map->first_side[point + 1] - map->first_side[point];
}

bool border_passes_straight(const BorderMap *map, i32 point) {
    if (border_degree(map, point) != 2) {
        return false;
    }
    const BorderSide *sides = map->sides + map->first_side[point];
    const Direction one = direction_of(map, sides[0]);
    const Direction other = direction_of(map, sides[1]);
    return one.quarter != other.quarter && one.quarter % 2 == other.quarter % 2 && one.rise == other.rise;
}
