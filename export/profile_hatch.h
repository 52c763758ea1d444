// profile_hatch.h: hatches by which the materials of a drawing are told apart without their colours.
#pragma once
#include "platform/owned.h"

struct HatchPoint {
    f64 x, y;  // points, y down
};

struct HatchLine {
    HatchPoint from, to;
};

struct HatchLines {
    Owned<HatchLine[]> items;
    i32 count, capacity;
};

// A closed line of what is hatched.
struct HatchRing {
    const HatchPoint *points;  // not owned
    i32 count;
};

// The lines of a material's hatch within rings, which may lie in each other: what an odd number of them is
// around is hatched. All lines of a hatch lie on one grid over the page. The substrate (0) has no hatch;
// others repeat after nine.
//   lines   a growable array, which they are appended to
void profile_hatch_add(i32 material, const HatchRing *rings, i32 ring_count, HatchLines *lines);
