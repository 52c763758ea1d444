// profile_borders.h: the borders between the regions of a cut face, films of one material or of one number.
// Each border is there once, for the regions on both of its sides, so that what is drawn of neighbours meets
// without cracks and overlaps. A place across the section is a station: 2 * n at column n of the grid, and
// 2 * n + 1 half-way to the next. Heights are micrometres; x to the right, heights up.
#pragma once
#include "sim/cut_face.h"

inline constexpr i32 REGION_OF_AIR = -1;

struct BorderPoint {
    i32 station;
    f64 height;
};

// A part of the face between a station and the next.
struct StationPiece {
    i32 station;
    i32 region;
    f64 left_low, left_high;
    f64 right_low, right_high;
};

// The parts of a face, by stations, then from below.
struct StationPieces {
    i32 station_count;  // 2 * N - 1
    i32 count;
    Owned<StationPiece[]> items;
    Owned<i32[]> first;  // station_count + 1: the first piece at each station, and behind the last
};

// The pieces of a face, which end half-way between columns where it is of use.
//   regions   of each film of the face, 0 or more
StationPieces station_pieces_create(const CutFace *face, const i32 *regions);

// A straight line on one station or between two that lie side by side, from the left or from below.
struct Border {
    i32 from, to;     // points
    i32 left, right;  // the regions on its way's left and right; the same where a region is cut open
};

// Border 2 * b is border b on its way, 2 * b + 1 the same on the way back.
using BorderSide = i32;

struct BorderMap {
    const StationPieces *pieces;  // not owned
    BorderPoint *points;          // by stations, then from below; owned, as all that follows
    i32 point_count;
    i32 *first;        // stations + 1: the first point of each station, and behind the last
    i32 *left_region;  // of each point: what lies left of its station from there to the next point
    i32 *right_region;
    bool *is_cut;  // whether the region that is on both sides there is to be cut open
    Border *borders;
    i32 border_count, border_capacity;
    i32 *first_side;    // points + 1: the first of the sides that begin at each point
    BorderSide *sides;  // by points, then counter-clockwise from straight down
    i32 *place;         // of each side in `sides`
};

// The points and regions of the pieces, which must outlive it; without borders. Freed with border_map_free.
BorderMap *border_map_create(const StationPieces *pieces);

void border_map_free(BorderMap *map);  // takes null

template <>
struct Freed<BorderMap> {
    void operator()(BorderMap *map) const { border_map_free(map); }
};

// Finds the borders, those of `is_cut` included; those found before are forgotten.
void border_map_connect(BorderMap *map);

// Where a side begins and ends, and the region on its left.
i32 border_start(const BorderMap *map, BorderSide side);
i32 border_end(const BorderMap *map, BorderSide side);
i32 border_region(const BorderMap *map, BorderSide side);

// The side that goes on around the region on the left.
BorderSide border_next(const BorderMap *map, BorderSide side);

// How many sides begin at a point.
i32 border_degree(const BorderMap *map, i32 point);

// Whether two borders meet at a point and nothing else, and go on straight: without any tolerance.
bool border_passes_straight(const BorderMap *map, i32 point);
