// visible_parts.h: which triangles of a layer's mesh a picture can show. A part is a grid quad, numbered like
// its corner nearest to the origin: m * N + n; each has two triangles, A over (n, m), (n + 1, m), (n, m + 1)
// and B over (n + 1, m), (n + 1, m + 1), (n, m + 1), at the top and at the underside.
//
// The eye stands in front of the section and above it, half way across. A line of sight therefore enters a
// layer through its top, its front or its underside only, never through the left, right and back sides, which
// no mesh has; and through a level underside it never comes. Two things follow for opaque layers whose
// thickness is nowhere negative. A level underside is never seen. And where the top of one and the underside
// of another share a triangle, corner for corner, that triangle is never seen: before a line of sight gets
// there it passes through one of the two, and so through its surface. What hides is drawn together with what
// it hides: a translucent layer drawn between them would show what was drawn before it, so only layers in one
// unbroken run of opaque ones hide each other. The first row of quads is left out of this: its edge lies in
// the cut face, where a surface is seen through the other at equal depth.
#pragma once
#include "process/stack.h"
#include "sim/layer.h"
#include "sim/level_blocks.h"

enum VisiblePart : u8 {
    PART_TOP_A = 1,
    PART_TOP_B = 2,
    PART_UNDER_A = 4,
    PART_UNDER_B = 8,
    PART_LEVEL = 16,   // the top is level there and around, so that its four normals are the same
    PART_MERGED = 32,  // the top is drawn as part of a block (sim/level_blocks.h)
    PART_CORNER = 64,  // of the point of that number: it is a corner of a block
};

// The marks of a top, N x M parts, as the blocks that join its level parts see them.
inline LevelMarks part_level_marks(i32 grid_n, i32 grid_m, u8 *parts) {
    return {grid_n, grid_m, parts, PART_TOP_A | PART_TOP_B | PART_LEVEL, PART_MERGED, PART_CORNER};
}

// Whether a layer can hide others and be hidden: opaque, on a grid with quads, thickness nowhere negative and
// everywhere a number.
bool layer_hides(const Layer *layer);

// The run of slots around a slot whose layers hide each other.
struct SlotRun {
    i32 first, last;
};

// Marks the parts of a layer that a picture can show, and some more: the last few of them are not worth the
// looking through all layers. Returns the slots that the result depends on; `last` is
// I32_MAX where layers that follow would count too.
//   slot    holds a layer that layer_hides
//   run     slots around it; each is empty or holds a layer that layer_hides
//   parts   N x M numbers of PART_TOP_A, PART_TOP_B, PART_UNDER_A, PART_UNDER_B and PART_LEVEL; those of the
//           last row and column, which are no quads, become 0
SlotRun visible_parts_find(const Stack *stack, i32 slot, SlotRun run, u8 *parts);
