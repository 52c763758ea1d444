#include "render/part_rows.h"

#include <cassert>

static constexpr i64 PIECE = 64;  // quads whose triangles a byte can count

static inline u8 flag(bool holds) {
    return static_cast<u8>(holds ? 0xFF : 0);
}

bool part_row_covers(PartRow row, i64 count, u8 *covers) {
    assert(row.heights != nullptr && row.surface != nullptr && covers != nullptr);
    i32 any_thin = 0;
    for (i64 n = 0; n < count; ++n) {
        const f32 thickness = row.top[n] - row.bottom[n];
        const bool thick = thickness >= row.thin;
        covers[n] = flag((row.heights[n] == row.surface[n]) & thick);
        any_thin |= static_cast<i32>(thickness > 0.0F) & static_cast<i32>(thickness < row.thin);
    }
    return any_thin != 0;
}

void part_row_thin(const f32 *top, const f32 *bottom, f32 thin, i64 count, u8 *is_thin) {
    assert(top != nullptr && bottom != nullptr && is_thin != nullptr);
    for (i64 n = 0; n < count; ++n) {
        const f32 thickness = top[n] - bottom[n];
        is_thin[n] = flag((thickness > 0.0F) & (thickness < thin));
    }
}

i32 part_row_hide(u8 *parts, i64 count, const u8 *near_row, const u8 *far_row, u8 bit_a, u8 bit_b) {
    assert(parts != nullptr && near_row != nullptr && far_row != nullptr);
    i32 left = 0;
    for (i64 first = 0; first + 1 < count; first += PIECE) {
        const i64 end = first + PIECE < count - 1 ? first + PIECE : count - 1;
        u8 left_here = 0;
        for (i64 n = first; n < end; ++n) {
            const u8 shared = static_cast<u8>(near_row[n + 1] & far_row[n]);
            const u8 hidden_a = static_cast<u8>(near_row[n] & shared & bit_a);
            const u8 hidden_b = static_cast<u8>(far_row[n + 1] & shared & bit_b);
            const u8 part = static_cast<u8>(parts[n] & ~(hidden_a | hidden_b));
            parts[n] = part;
            left_here =
                static_cast<u8>(left_here + ((part & bit_a) != 0 ? 1 : 0) + ((part & bit_b) != 0 ? 1 : 0));
        }
        left += left_here;
    }
    return left;
}
