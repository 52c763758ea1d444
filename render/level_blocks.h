// level_blocks.h: level parts of a layer's top joined to square blocks, so that they take few triangles. The
// blocks are those of a quadtree (Finkel, Bentley: Quad Trees, 1974): sides of powers of two, at multiples of
// them. A block keeps on its border every grid point that any neighbour has there, so that no crack opens
// between them.
#pragma once
#include "platform/owned.h"

struct LevelBlock {
    i32 n, m;  // the grid point nearest to the origin
    i32 size;  // quads a side: 2, 4, ... LARGEST_BLOCK
};

inline constexpr i32 LARGEST_BLOCK = 64;
inline constexpr i32 MOST_BORDER_POINTS = 4 * LARGEST_BLOCK;

// A growable array.
struct LevelBlocks {
    LevelBlock *items;  // owned; freed with memory_free
    i32 count, capacity;
};

// Finds the largest blocks of parts (visible_parts.h) that have both triangles of the top and are level. Sets
// PART_MERGED for the quads inside and PART_CORNER for the blocks' corners.
//   parts    grid_n x grid_m, as visible_parts_find leaves them
//   blocks   receives them behind those that are there
void level_blocks_find(i64 grid_n, i64 grid_m, u8 *parts, LevelBlocks *blocks);

// The points on the border of a block that its outline needs: its corners, those of other blocks, and all
// that touch a quad outside of any block. Counter-clockwise from the block's first point.
//   parts    of all the blocks found
//   points   receives their numbers, m * grid_n + n
// Returns how many there are, 4 or more.
i32 level_block_border(i64 grid_n, const u8 *parts, const LevelBlock *block, i64 points[MOST_BORDER_POINTS]);
