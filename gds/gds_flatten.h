// gds_flatten.h: cut the polygons of a cell, and of all it refers to, out of a window.
// Coordinates are database units, y up; results are micrometres from the window's lower-left corner.
#pragma once
#include "gds/gds_database.h"
#include "gds/polygon_list.h"

inline constexpr i32 GDS_FLATTEN_LIMIT = 10000000;    // polygons
inline constexpr i32 GDS_FLATTEN_LIMIT_REACHED = 30;  // result of gds_flatten
inline constexpr i32 GDS_FLATTEN_INTERRUPTED = -2;    // the same
inline constexpr i32 GDS_FLATTEN_GIVEN_UP = -3;       // the same

// Points of all polygons together, of 8 bytes each: 2 GB, which an ordinary machine has. Polygons up to their
// own limit may have 25 points each on average, rectangles have 5.
inline constexpr i64 GDS_FLATTEN_POINT_LIMIT = 250000000;

// Steps of the walk: a polygon that is looked at is one, a placement or a part of an array eight, a new
// angle 64. Not counted is what the file holds, once, with 16 parts of each array; and each polygon taken
// allows 16 more. Forty times what any real layout came to that was tried; it takes a second or two.
inline constexpr i64 GDS_FLATTEN_STEP_LIMIT = 64000000;

struct FlattenContext {
    PolygonList *out;    // receives the polygons; owned by the caller
    Box window;          // a polygon that only touches it is outside
    i64 smallest;        // in/out: smallest polygon size met; start at I64_MAX
    i64 min_size;        // smaller polygons are dropped
    i64 skipped;         // in/out: polygons dropped
    f32 scale;           // micrometres per database unit
    i64 step_limit = 0;  // 0: GDS_FLATTEN_STEP_LIMIT
    i64 most_work = 0;   // gives up after so many references, blocks of arrays, cells and points; 0: never
    i64 steps = 0;       // out: steps taken, without those that are not counted
};

// Appends every polygon of the instance and of its references that overlaps the window.
//   context   window and limits filled in; `out` may already hold polygons
//   instance  a cell whose extent is known (as gds_read leaves it)
// Returns 0; 30 when the list has reached 10,000,000 polygons or more points than their limit (the last
// polygon is kept), or the walk its limit of steps (which limit it was goes to diagnostic_write); -2 after an
// interrupt, soon; -3 when it has given up.
i32 gds_flatten(FlattenContext *context, const GdsInstance *instance);
