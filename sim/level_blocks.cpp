// Rows (m) run outside, columns (n) inside throughout.
#include "sim/level_blocks.h"

#include <cassert>

static constexpr i32 BLOCK_SIZES = 6;  // 2, 4, 8, 16, 32, 64

// Which squares of one size are level, row by row; squares that reach over the grid are left out.
struct LevelSquares {
    Owned<u8[]> flags;
    i64 across, along;
};

static LevelSquares squares_of_quads(const LevelMarks *surface) {
    const i64 grid_n = surface->n;
    const u8 level = surface->level;
    LevelSquares squares = {nullptr, (grid_n - 1) / 2, (i64{surface->m} - 1) / 2};
    squares.flags = memory_scratch<u8>(squares.across * squares.along);
    for (i64 y = 0; y < squares.along; ++y) {
        const u8 *low = surface->marks + 2 * y * grid_n;
        const u8 *high = low + grid_n;
        u8 *out = squares.flags.get() + y * squares.across;
        for (i64 x = 0; x < squares.across; ++x) {
            const u8 all = static_cast<u8>(low[2 * x] & low[2 * x + 1] & high[2 * x] & high[2 * x + 1]);
            out[x] = static_cast<u8>((all & level) == level ? 1 : 0);
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

static void mark_block(const LevelMarks *surface, const LevelBlock *block) {
    const i64 grid_n = surface->n;
    u8 *first = surface->marks + block->m * grid_n + block->n;
    for (i64 m = 0; m < block->size; ++m) {
        for (i64 n = 0; n < block->size; ++n) {
            first[m * grid_n + n] |= surface->merged;
        }
    }
    const i64 behind = block->size * grid_n;
    const i64 corners[4] = {0, block->size, behind, behind + block->size};
    for (const i64 corner : corners) {
        first[corner] |= surface->corner;
    }
}

void level_blocks_find(const LevelMarks *surface, LevelBlocks *blocks) {
    assert(surface != nullptr && surface->n > 1 && surface->m > 1 && surface->marks != nullptr);
    assert(blocks != nullptr);
    LevelSquares sizes[BLOCK_SIZES];
    sizes[0] = squares_of_quads(surface);
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
                mark_block(surface, &block);
                array_append(&blocks->items, &blocks->count, &blocks->capacity, block);
            }
        }
    }
}

bool level_point_is_kept(const LevelMarks *surface, i64 n, i64 m) {
    assert(surface != nullptr && n >= 0 && n < surface->n && m >= 0 && m < surface->m);
    const i64 grid_n = surface->n;
    const u8 *here = surface->marks + m * grid_n + n;
    if ((*here & surface->corner) != 0) {
        return true;
    }
    // The quads around the point; beyond the edge of the grid none asks for it.
    const u32 none = 0xFF;
    const bool right = n + 1 < grid_n;
    const bool behind = m + 1 < surface->m;
    const u32 all = (right && behind ? here[0] : none) & (n > 0 && behind ? here[-1] : none) &
                    (right && m > 0 ? here[-grid_n] : none) & (n > 0 && m > 0 ? here[-grid_n - 1] : none);
    return (all & surface->merged) == 0;
}

i32 level_block_border(const LevelMarks *surface, const LevelBlock *block, i64 points[MOST_BORDER_POINTS]) {
    assert(surface != nullptr && block != nullptr && points != nullptr);
    assert(block->size <= LARGEST_BLOCK);
    const i32 steps[4][2] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
    i64 n = block->n;
    i64 m = block->m;
    i32 count = 0;
    for (const i32(&step)[2] : steps) {
        for (i32 i = 0; i < block->size; ++i) {
            if (level_point_is_kept(surface, n, m)) {
                points[count++] = m * surface->n + n;
            }
            n += step[0];
            m += step[1];
        }
    }
    return count;
}
