// part_rows.h: what visible_parts.cpp asks of every point and every quad of a row, in forms that compilers
// turn into vector instructions. Those of quads are the bits of visible_parts.h.
#pragma once
#include "platform/base.h"

// What a point tells of a layer that may be the next of those that cover a surface. A triangle goes by the
// flags of its three corners together.
enum CoverFlag : u8 {
    COVER_THERE = 1,    // the layer is present
    COVER_APART = 2,    // its surface is not where the cover ended that was found before
    COVER_SHALLOW = 4,  // the cover with this layer is not thick enough to hide what is under it
};

// A surface of one layer, how far it is covered, and another layer, along one row of grid points.
struct CoverRow {
    const f32 *heights;       // of the surface in question
    f32 *reach;               // where its cover ends; the same as the heights where it has none
    const f32 *near_surface;  // of the other layer, the one towards the surface in question
    const f32 *far_surface;   // and its other one
    f32 thin;                 // a thickness below this one hides nothing
};

// The flags of each point. Where the other layer goes on from the cover, the cover ends at its far surface.
// Returns whether the layer is there but thinner than `thin` at any of the points.
bool part_row_cover(CoverRow row, i64 count, u8 *flags);

// Where a layer is there but thinner than `thin`: 0xFF, 0 elsewhere.
void part_row_thin(const f32 *top, const f32 *bottom, f32 thin, i64 count, u8 *is_thin);

// The two triangles of each of the count - 1 quads of a row.
struct HideRow {
    u8 *parts;
    u8 *open;   // 1 for A, 2 for B: until now every layer at its corners went on with the cover
    i32 shift;  // of the bits of A and B in `parts`
    const u8 *near_row, *far_row;  // flags of the points before and behind the quads
};

// Closes the triangles at which the layer does not go on with the cover, and takes those from the parts that
// are covered and open. Returns how many of A and B are left among the parts.
i32 part_row_hide(HideRow row, i64 count);
