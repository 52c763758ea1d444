// profile_outline.h: the outlines of the regions of a cut face, as few points as tell them exactly: where
// neighbouring pieces of a region go on there is no line, and where a line is straight no point. Both sides
// of a border have the same points, for points are left out of borders and not of outlines. Stations and
// micrometres.
#pragma once
#include "export/profile_borders.h"

// A closed line; its last point is joined to its first. With its region on the left: what is around a region
// goes counter-clockwise, a hole clockwise.
struct OutlineRing {
    i32 region;
    i32 first, count;  // points
    f64 area;          // square micrometres; negative for a hole
};

// A border from one place where more than two meet to the next, or around.
struct OutlineBorder {
    i32 first, count;  // points
    bool closed;       // the last point is joined to the first
};

struct ProfileOutline {
    Owned<BorderPoint[]> points;
    i32 point_count, point_capacity;
    Owned<OutlineRing[]> rings;  // in no order
    i32 ring_count, ring_capacity;
    Owned<OutlineBorder[]> borders;  // each once
    i32 border_count, border_capacity;
};

enum OutlineKind {
    OUTLINE_SIMPLE,   // no ring comes to a point twice, so that holes are rings of their own
    OUTLINE_KEYHOLE,  // rings go along cuts, there and back
};

// The rings of a map whose borders are found.
//   spacing   of columns, micrometres
ProfileOutline profile_outline_create(const BorderMap *map, f32 spacing, OutlineKind kind);

// The borders of a map as lines, for drawings; appended to the outline.
void profile_outline_add_borders(const BorderMap *map, ProfileOutline *outline);

// The rings of a face whose regions have holes cut open, along stations, and which are cut into
// parts of at most so many points. Areas are all positive.
// A ring that cannot be cut, which lies between two stations, keeps its points.
ProfileOutline profile_outline_create_cut(const StationPieces *pieces, f32 spacing, i32 most_points);
