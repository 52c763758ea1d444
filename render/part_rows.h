// part_rows.h: what visible_parts.cpp asks of every point and every quad of a row, in forms that compilers
// turn into vector instructions. Flags of points are 0xFF where something holds and 0 elsewhere; those of
// quads are the bits of visible_parts.h.
#pragma once
#include "platform/base.h"

// A surface of one layer and another layer, along one row of grid points.
struct PartRow {
    const f32 *heights;       // of the surface in question
    const f32 *surface;       // of the other layer, its top or its bottom
    const f32 *top, *bottom;  // of the other layer
    f32 thin;                 // a thickness below this one hides nothing
};

// Where the two surfaces coincide and the other layer is thick enough to hide what is under it. Returns
// whether it is there but thinner at any of the points.
bool part_row_covers(PartRow row, i64 count, u8 *covers);

// Where a layer is there but thinner than `thin`.
void part_row_thin(const f32 *top, const f32 *bottom, f32 thin, i64 count, u8 *is_thin);

// Takes the triangles away whose three corners are covered, from the parts of a row of count - 1 quads.
//   near_row, far_row   flags of the count points before and behind the quads
//   bit_a, bit_b        the bits of the triangles A and B in question
// Returns how many of them are left.
i32 part_row_hide(u8 *parts, i64 count, const u8 *near_row, const u8 *far_row, u8 bit_a, u8 bit_b);
