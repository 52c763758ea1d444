#include "render/part_rows.h"

#include <cassert>
#include <cmath>

static constexpr i64 PIECE = 64;  // quads whose triangles a byte can count

bool part_row_cover(CoverRow row, i64 count, u8 *flags) {
    assert(row.heights != nullptr && row.reach != nullptr && row.near_surface != nullptr);
    assert(row.far_surface != nullptr && flags != nullptr);
    i32 any_thin = 0;
    for (i64 n = 0; n < count; ++n) {
        const f32 near_surface = row.near_surface[n];
        const f32 far_surface = row.far_surface[n];
        const bool apart = near_surface != row.reach[n];
        const f32 reach = apart ? row.reach[n] : far_surface;
        const f32 thickness = std::fabs(far_surface - near_surface);
        const f32 cover = std::fabs(reach - row.heights[n]);
        row.reach[n] = reach;
        flags[n] = static_cast<u8>((near_surface != far_surface ? COVER_THERE : 0) |
                                   (apart ? COVER_APART : 0) | (cover >= row.thin ? 0 : COVER_SHALLOW));
        any_thin |= static_cast<i32>(thickness > 0.0F) & static_cast<i32>(thickness < row.thin);
    }
    return any_thin != 0;
}

void part_row_thin(const f32 *top, const f32 *bottom, f32 thin, i64 count, u8 *is_thin) {
    assert(top != nullptr && bottom != nullptr && is_thin != nullptr);
    for (i64 n = 0; n < count; ++n) {
        const f32 thickness = top[n] - bottom[n];
        const bool here = (thickness > 0.0F) & (thickness < thin);
        is_thin[n] = static_cast<u8>(here ? 0xFF : 0);
    }
}

// 1 where a layer at a triangle's corners does not go on with the cover.
static inline u8 is_torn(u8 corners) {
    return static_cast<u8>(corners & (corners >> 1) & 1);
}

// 1 where the cover hides the triangle.
static inline u8 is_deep(u8 corners) {
    return static_cast<u8>(~(corners >> 2) & 1);
}

i32 part_row_hide(HideRow row, i64 count) {
    assert(row.parts != nullptr && row.open != nullptr && row.near_row != nullptr && row.far_row != nullptr);
    i32 left = 0;
    for (i64 first = 0; first + 1 < count; first += PIECE) {
        const i64 end = first + PIECE < count - 1 ? first + PIECE : count - 1;
        u8 left_here = 0;
        for (i64 n = first; n < end; ++n) {
            const u8 shared = static_cast<u8>(row.near_row[n + 1] | row.far_row[n]);
            const u8 a = static_cast<u8>(row.near_row[n] | shared);
            const u8 b = static_cast<u8>(row.far_row[n + 1] | shared);
            const u8 open = static_cast<u8>(row.open[n] & ~(is_torn(a) | is_torn(b) << 1));
            const u8 hidden = static_cast<u8>(open & (is_deep(a) | is_deep(b) << 1));
            const u8 part = static_cast<u8>(row.parts[n] & ~(hidden << row.shift));
            row.open[n] = static_cast<u8>(open & ~hidden);
            row.parts[n] = part;
            left_here = static_cast<u8>(left_here + (part >> row.shift & 1) + (part >> row.shift >> 1 & 1));
        }
        left += left_here;
    }
    return left;
}
