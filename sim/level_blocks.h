// level_blocks.h: level parts of a surface over the grid joined to square blocks, so that they take few
// triangles. The blocks are those of a quadtree (Finkel, Bentley: Quad Trees, 1974): sides of powers of two,
// at multiples of them. A block keeps on its border every grid point that any neighbour has there, so that no
// crack opens between them.
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

// Marks of a surface. Quads are numbered like their corner nearest to the origin: m * n_count + n.
struct LevelMarks {
    i32 n, m;   // points of the grid
    u8 *marks;  // n x m; not owned
    u8 level;   // bits that a quad has which may be joined to others: all of them
    u8 merged;  // bit of a quad inside a block
    u8 corner;  // bit of a point that the blocks around it keep; theirs that are a block's corner
};

// Finds the largest blocks of quads that have all of `level`. Sets `merged` for the quads inside and `corner`
// for the blocks' corners; points that have `corner` before are kept as well.
//   blocks   receives them behind those that are there
void level_blocks_find(const LevelMarks *surface, LevelBlocks *blocks);

// Whether some triangle has a corner at a point: not when it lies inside a block, or on the border of blocks
// none of which needs it. Of all the blocks found.
bool level_point_is_kept(const LevelMarks *surface, i64 n, i64 m);

// The points on the border of a block that its outline needs: its corners, those of other blocks, and all
// that touch a quad outside of any block. Counter-clockwise from the block's first point.
//   surface   of all the blocks found
//   points    receives their numbers, m * n_count + n
// Returns how many there are, 4 or more.
i32 level_block_border(const LevelMarks *surface, const LevelBlock *block, i64 points[MOST_BORDER_POINTS]);
