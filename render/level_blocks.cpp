#include "render/level_blocks.h"

#include <cassert>
#include "render/visible_parts.h"

static constexpr i32 BLOCK_SIZES = 6;  // 2, 4, 8, 16, 32, 64

// Which squares of one size are level and whole, row by row; squares that reach over the grid are left out.
struct LevelSquares {
    Owned<u8[]> flags;
    i64 across, along;
};

static bool is_whole_and_level(u8 part) {
    constexpr u8 NEEDED = PART_TOP_A | PART_TOP_B | PART_LEVEL;
    return (part & NEEDED) == NEEDED;
}

static LevelSquares squares_of_quads(i64 grid_n, i64 grid_m, const u8 *parts) {
    LevelSquares squares = {nullptr, (grid_n - 1) / 2, (grid_m - 1) / 2};
    squares.flags = memory_scratch<u8>(squares.across * squares.along);
    for (i64 y = 0; y < squares.along; ++y) {
        const u8 *low = parts + 2 * y * grid_n;
        const u8 *high = low + grid_n;
        u8 *out = squares.flags.get() + y * squares.across;
        for (i64 x = 0; x < squares.across; ++x) {
            const u8 all = static_cast<u8>(low[2 * x] & low[2 * x + 1] & high[2 * x] & high[2 * x + 1]);
            out[x] = static_cast<u8>(is_whole_and_level(all) ? 1 : 0);
        }
    }
    return squares;
}

static LevelSquares squares_of_squares(const LevelSquares *parts) {
    LevelSquares squares = {nullptr, parts->across / 2, parts->along / 2};
    squares.flags = memory_scratch<u8>(squares.across * squares.along);
    for (i64 y = 0; y < squares.along; ++y) {
        const u8 *low = parts->flags.get() + 2 * y * parts->across;
        const u8 *high = low + parts->across;
        u8 *out = squares.flags.get() + y * squares.across;
        for (i64 x = 0; x < squares.across; ++x) {
            out[x] = static_cast<u8>(low[2 * x] & low[2 * x + 1] & high[2 * x] & high[2 * x + 1]);
        }
    }
    return squares;
}

static void mark_block(i64 grid_n, u8 *parts, const LevelBlock *block) {
    u8 *first = parts + block->m * grid_n + block->n;
    for (i64 m = 0; m < block->size; ++m) {
        for (i64 n = 0; n < block->size; ++n) {
            first[m * grid_n + n] |= PART_MERGED;
        }
    }
    const i64 behind = block->size * grid_n;
    const i64 corners[4] = {0, block->size, behind, behind + block->size};
    for (const i64 corner : corners) {
        first[corner] |= PART_CORNER;
    }
}

void level_blocks_find(i64 grid_n, i64 grid_m, u8 *parts, LevelBlocks *blocks) {
    assert(grid_n > 1 && grid_m > 1 && parts != nullptr && blocks != nullptr);
    LevelSquares sizes[BLOCK_SIZES];
    sizes[0] = squares_of_quads(grid_n, grid_m, parts);
    for (i32 k = 1; k < BLOCK_SIZES; ++k) {
        sizes[k] = squares_of_squares(&sizes[k - 1]);
    }
    for (i32 k = BLOCK_SIZES - 1; k >= 0; --k) {
        const LevelSquares *squares = &sizes[k];
        const LevelSquares *larger = k + 1 < BLOCK_SIZES ? &sizes[k + 1] : nullptr;
        for (i64 y = 0; y < squares->along; ++y) {
            for (i64 x = 0; x < squares->across; ++x) {
                const bool inside = larger != nullptr && x / 2 < larger->across && y / 2 < larger->along &&
                                    larger->flags[y / 2 * larger->across + x / 2] != 0;
                if (squares->flags[y * squares->across + x] == 0 || inside) {
                    continue;
                }
                const i32 size = 2 << k;
                const LevelBlock block = {static_cast<i32>(x) * size, static_cast<i32>(y) * size, size};
                mark_block(grid_n, parts, &block);
                array_append(&blocks->items, &blocks->count, &blocks->capacity, block);
            }
        }
    }
}

// Whether a neighbour has a point there too. The point is not on the edge of the grid: what is level reaches
// beyond it on all sides.
static bool is_needed(i64 grid_n, const u8 *parts, i64 point) {
    const u8 inside = static_cast<u8>(parts[point] & parts[point - 1] & parts[point - grid_n] &
                                      parts[point - grid_n - 1] & PART_MERGED);
    return inside == 0 || (parts[point] & PART_CORNER) != 0;
}

i32 level_block_border(i64 grid_n, const u8 *parts, const LevelBlock *block, i64 points[MOST_BORDER_POINTS]) {
    assert(parts != nullptr && block != nullptr && points != nullptr);
    assert(block->n > 0 && block->m > 0 && block->size <= LARGEST_BLOCK);
    const i64 steps[4] = {1, grid_n, -1, -grid_n};
    i64 point = block->m * grid_n + block->n;
    i32 count = 0;
    for (const i64 step : steps) {
        for (i32 i = 0; i < block->size; ++i) {
            if (is_needed(grid_n, parts, point)) {
                points[count++] = point;
            }
            point += step;
        }
    }
    return count;
}
