// Rows (m) run outside, columns (n) inside throughout.
#include "render/visible_parts.h"

#include <cassert>
#include <cmath>
#include <cstring>
#include <utility>
#include "platform/memory.h"
#include "platform/owned.h"
#include "render/part_rows.h"

// Parts of the section's width. A film that is thinner, what an etch leaves by rounding, lies within a few
// steps of the depths that the graphics can tell apart: what is under it wins against it.
static constexpr f32 THIN = 1e-5F;

static constexpr i32 LOOK_AT_LEAST = 2;  // layers on either side
static constexpr i64 FEW_PARTS = 32;  // fewer triangles than this part of the grid points are not looked for

bool layer_hides(const Layer *layer) {
    assert(layer != nullptr);
    if (!(layer->color[3] >= 1.0F) || layer->grid_n < 2 || layer->grid_m < 2) {
        return false;
    }
    const i64 count = i64{layer->grid_n} * layer->grid_m;
    i32 wrong = 0;
    for (i64 i = 0; i < count; ++i) {
        wrong |= layer->top[i] - layer->bottom[i] >= 0.0F ? 0 : 1;
    }
    return wrong == 0;
}

// One flag per point of a row, for the two rows of a row of quads.
struct RowFlags {
    u8 *near_row;
    u8 *far_row;
};

// The flags of A and B of one quad, the first two bits of a part, by the flags of its corners.
static u8 corners_any(RowFlags flags, i64 n) {
    const u32 shared = static_cast<u32>(flags.near_row[n + 1]) | flags.far_row[n];
    return static_cast<u8>((flags.near_row[n] | shared) | (flags.far_row[n + 1] | shared) << 1);
}

static void row_differ(const f32 *a, const f32 *b, i64 count, u8 *differ) {
    for (i64 n = 0; n < count; ++n) {
        differ[n] = static_cast<u8>(a[n] != b[n]);
    }
}

// The triangles that the mesh has, without level undersides.
static void mark_mesh(const Layer *layer, u8 *parts) {
    const i64 grid_n = layer->grid_n;
    const Owned<u8[]> scratch = memory_scratch<u8>(4 * grid_n);
    RowFlags present = {scratch.get(), scratch.get() + grid_n};
    u8 *rises_along = scratch.get() + 2 * grid_n;   // of the quad's side nearest to the origin, to its right
    u8 *rises_across = scratch.get() + 3 * grid_n;  // of the sides from the near row to the far one
    row_differ(layer->top, layer->bottom, grid_n, present.near_row);
    for (i64 m = 0; m + 1 < layer->grid_m; ++m) {
        const f32 *near_bottom = layer->bottom + m * grid_n;
        const f32 *far_bottom = near_bottom + grid_n;
        row_differ(layer->top + (m + 1) * grid_n, far_bottom, grid_n, present.far_row);
        row_differ(near_bottom, near_bottom + 1, grid_n - 1, rises_along);
        row_differ(near_bottom, far_bottom, grid_n, rises_across);
        u8 *row = parts + m * grid_n;
        for (i64 n = 0; n + 1 < grid_n; ++n) {
            const u8 there = corners_any(present, n);
            const u8 slope_a = static_cast<u8>(rises_along[n] | rises_across[n]);
            const u8 slope_b = static_cast<u8>(rises_across[n + 1] | (far_bottom[n] != far_bottom[n + 1]));
            const u8 slopes = static_cast<u8>(slope_a | slope_b << 1);
            row[n] = static_cast<u8>(there | (there & slopes) << 2);
        }
        row[grid_n - 1] = 0;
        std::swap(present.near_row, present.far_row);
    }
    std::memset(parts + (i64{layer->grid_m} - 1) * grid_n, 0, static_cast<size_t>(grid_n));
}

// Where parts are looked for that other layers hide.
struct HiddenSearch {
    const f32 *heights;  // the surface in question of the layer in question
    u8 *parts;
    i32 shift;  // of the bits of its two triangles: 0 for the top, 2 for the underside
    i64 grid_n, grid_m;
    f32 thin;      // thickness below which a cover hides nothing
    u8 *row_open;  // 1 for each row of quads that still has such a part
    u8 *open;      // N x M: the triangles as part_rows.h has them
    f32 *reach;    // N x M: where the cover ends that was found until now
    u8 *flags;     // 4 x N, scratch
};

// Quads at whose corners the other layer is thin are not level: both keep the same triangles there.
static void unmark_thin(const HiddenSearch *search, const Layer *other, i64 m) {
    const i64 grid_n = search->grid_n;
    const i64 start = m * grid_n;
    const i64 behind = start + grid_n;
    const RowFlags is_thin = {search->flags + 2 * grid_n, search->flags + 3 * grid_n};
    part_row_thin(other->top + start, other->bottom + start, search->thin, grid_n, is_thin.near_row);
    part_row_thin(other->top + behind, other->bottom + behind, search->thin, grid_n, is_thin.far_row);
    u8 *row = search->parts + start;
    for (i64 n = 0; n + 1 < grid_n; ++n) {
        row[n] = static_cast<u8>(row[n] & ~(corners_any(is_thin, n) != 0 ? PART_LEVEL : 0));
    }
}

// What one row of points tells of a layer that may hide the parts.
struct CoverFlags {
    u8 *points;
    bool any_thin;
};

static void cover_row(const HiddenSearch *search, const Layer *other, i64 m, CoverFlags *flags) {
    const i64 start = m * search->grid_n;
    const bool upward = search->shift == 0;
    const f32 *near_surface = upward ? other->bottom : other->top;
    const f32 *far_surface = upward ? other->top : other->bottom;
    flags->any_thin = part_row_cover({search->heights + start, search->reach + start, near_surface + start,
                                      far_surface + start, search->thin},
                                     search->grid_n, flags->points);
}

// Takes away what is covered by the other layer, together with those that were looked at before. Layers that
// share triangles with the surface and with each other, corner for corner, hide it together where they are
// thick enough at all of the corners: near the foot of a wall the surfaces that meet are too close for depths
// to tell, and all are drawn. Returns how many triangles are left to look for.
static i64 hide_parts(const HiddenSearch *search, const Layer *other) {
    const i64 grid_n = search->grid_n;
    CoverFlags near_row = {search->flags, false};
    CoverFlags far_row = {search->flags + grid_n, false};
    i64 known = -1;  // the row whose flags the far ones are
    i64 left = 0;
    for (i64 m = 0; m + 1 < search->grid_m; ++m) {
        if (search->row_open[m] == 0) {
            continue;
        }
        std::swap(near_row, far_row);
        if (known != m) {
            cover_row(search, other, m, &near_row);
        }
        known = m + 1;
        cover_row(search, other, known, &far_row);
        const i64 start = m * grid_n;
        const i32 open = part_row_hide(
            {search->parts + start, search->open + start, search->shift, near_row.points, far_row.points},
            grid_n);
        if (near_row.any_thin || far_row.any_thin) {
            unmark_thin(search, other, m);
        }
        search->row_open[m] = static_cast<u8>(open > 0 ? 1 : 0);
        left += open;
    }
    return left;
}

// Finds the rows of quads that have any of the parts looked for. Returns whether there are some. The first
// row keeps all of its parts: where the middle of a pixel lies on the edge of the cut face, a hidden surface
// is as near to the eye there as the face itself, and which of them is seen depends on both being drawn.
static bool search_start(const HiddenSearch *search) {
    constexpr u8 BOTH = PART_TOP_A | PART_TOP_B;
    const i64 grid_n = search->grid_n;
    bool any_row = false;
    search->row_open[0] = 0;
    for (i64 m = 1; m + 1 < search->grid_m; ++m) {
        const i64 start = m * grid_n;
        u8 any = 0;
        for (i64 n = 0; n < grid_n; ++n) {
            const u8 open = static_cast<u8>(search->parts[start + n] >> search->shift & BOTH);
            search->open[start + n] = open;
            any = static_cast<u8>(any | open);
        }
        search->row_open[m] = static_cast<u8>(any != 0 ? 1 : 0);
        if (any != 0) {
            std::memcpy(search->reach + start, search->heights + start,
                        static_cast<size_t>(2 * grid_n) * sizeof(f32));
        }
        any_row = any_row || any != 0;
    }
    return any_row;
}

// Marks the quads of a row all of whose corners are level: 1, as against 0.
static void mark_level_row(u8 *row, i64 grid_n, RowFlags level) {
    for (i64 n = 0; n + 1 < grid_n; ++n) {
        const i32 flat = level.near_row[n] & level.near_row[n + 1] & level.far_row[n] & level.far_row[n + 1];
        row[n] = static_cast<u8>(row[n] | flat * PART_LEVEL);
    }
}

// Marks the quads whose top is level together with the squares around it. Those at the edge of the grid stay
// as they are: their normals are sums over fewer squares. So do those where the layer is thin: which of two
// surfaces nearer to each other than depths can tell is seen depends on their triangles being the same.
static void mark_level(const Layer *layer, f32 thin, u8 *parts) {
    const i64 grid_n = layer->grid_n;
    const i64 grid_m = layer->grid_m;
    const Owned<u8[]> scratch = memory_scratch_zeroed<u8>(5 * grid_n);
    u8 *differs = scratch.get();
    RowFlags level = {scratch.get() + grid_n, scratch.get() + 2 * grid_n};  // points, of the last two rows
    u8 *rough = scratch.get() + 3 * grid_n;  // columns with a step within three rows
    u8 *is_thin = scratch.get() + 4 * grid_n;
    for (i64 m = 1; m + 1 < grid_m; ++m) {
        const f32 *here = layer->top + m * grid_n;
        const f32 *before = here - grid_n;
        const f32 *after = here + grid_n;
        for (i64 n = 0; n < grid_n; ++n) {
            rough[n] = static_cast<u8>((before[n] != here[n]) | (after[n] != here[n]));
        }
        for (i64 n = 0; n + 1 < grid_n; ++n) {
            differs[n] = static_cast<u8>(here[n] != here[n + 1]);
        }
        part_row_thin(here, layer->bottom + m * grid_n, thin, grid_n, is_thin);
        for (i64 n = 1; n + 1 < grid_n; ++n) {
            level.far_row[n] = static_cast<u8>(1 ^ (rough[n - 1] | rough[n] | rough[n + 1] | differs[n - 1] |
                                                    differs[n] | (is_thin[n] & 1)));
        }
        if (m > 1) {
            mark_level_row(parts + (m - 1) * grid_n, grid_n, level);
        }
        std::swap(level.near_row, level.far_row);
    }
}

// Where a surface of a layer that is there lies nearer to the top in question than depths can tell.
static void row_touch(const Layer *layer, const Layer *other, i64 m, f32 thin, u8 *touches) {
    const i64 grid_n = layer->grid_n;
    const f32 *here = layer->top + m * grid_n;
    const f32 *top = other->top + m * grid_n;
    const f32 *bottom = other->bottom + m * grid_n;
    for (i64 n = 0; n < grid_n; ++n) {
        const bool near_top = std::fabs(top[n] - here[n]) < thin;
        const bool near_bottom = std::fabs(bottom[n] - here[n]) < thin;
        touches[n] = static_cast<u8>(near_top | near_bottom);
    }
}

// Keeps the triangles of a level top as they are where the surface of a layer that nothing is hidden of
// touches them: that surface keeps its own, and which of the two is seen depends on their being the same.
static void unmark_touched(const Layer *layer, const Layer *other, f32 thin, u8 *parts) {
    const i64 grid_n = layer->grid_n;
    const Owned<u8[]> scratch = memory_scratch<u8>(2 * grid_n);
    RowFlags touches = {scratch.get(), scratch.get() + grid_n};
    row_touch(layer, other, 0, thin, touches.near_row);
    for (i64 m = 0; m + 1 < layer->grid_m; ++m) {
        row_touch(layer, other, m + 1, thin, touches.far_row);
        u8 *row = parts + m * grid_n;
        for (i64 n = 0; n + 1 < grid_n; ++n) {
            row[n] = static_cast<u8>(row[n] & ~(corners_any(touches, n) != 0 ? PART_LEVEL : 0));
        }
        std::swap(touches.near_row, touches.far_row);
    }
}

// Whether the search goes on: some triangles at the borders of films find no match in any layer, and a mesh
// that depends on few layers need not be made anew often.
static bool is_worth_looking(const HiddenSearch *search, i32 looked_at, i64 left) {
    return left > 0 && (looked_at < LOOK_AT_LEAST || left > search->grid_n * search->grid_m / FEW_PARTS);
}

// Looks through the layers above for undersides that hide the top. Returns the last slot that counts.
static i32 hide_top(const Stack *stack, i32 slot, SlotRun run, const HiddenSearch *search) {
    i64 left = search_start(search) ? I64_MAX : 0;
    i32 looked_at = 0;
    i32 last = slot;
    while (is_worth_looking(search, looked_at, left)) {
        if (last == run.last) {
            return I32_MAX;
        }
        const Layer *above = stack->layers[++last];
        if (above != nullptr) {
            left = hide_parts(search, above);
            ++looked_at;
        }
    }
    return last;
}

// Looks through the layers below for tops that hide the underside. Returns the first slot that counts.
static i32 hide_underside(const Stack *stack, i32 slot, SlotRun run, const HiddenSearch *search) {
    i64 left = search_start(search) ? I64_MAX : 0;
    i32 looked_at = 0;
    i32 first = slot;
    while (first > run.first && is_worth_looking(search, looked_at, left)) {
        const Layer *below = stack->layers[--first];
        if (below != nullptr) {
            left = hide_parts(search, below);
            ++looked_at;
        }
    }
    return first;
}

SlotRun visible_parts_find(const Stack *stack, i32 slot, SlotRun run, u8 *parts) {
    assert(stack != nullptr && parts != nullptr);
    assert(run.first >= 0 && run.first <= slot && slot <= run.last && run.last < stack->layer_count);
    const Layer *layer = stack->layers[slot];
    assert(layer != nullptr && layer->grid_n > 1 && layer->grid_m > 1);
    const f32 thin = stack->width * THIN;
    mark_mesh(layer, parts);
    mark_level(layer, thin, parts);
    bool alone = true;  // no layer outside the run counts
    for (i32 i = 0; i < stack->layer_count; ++i) {
        if (stack->layers[i] != nullptr && (i < run.first || i > run.last)) {
            unmark_touched(layer, stack->layers[i], thin, parts);
            alone = false;
        }
    }
    const i64 grid_n = layer->grid_n;
    const i64 count = grid_n * layer->grid_m;
    const Owned<u8[]> rows = memory_scratch<u8>(layer->grid_m);
    const Owned<u8[]> open = memory_scratch<u8>(count);
    const Owned<f32[]> reach = memory_scratch<f32>(count);
    const Owned<u8[]> flags = memory_scratch<u8>(4 * grid_n);
    const HiddenSearch top = {layer->top, parts,      0,          grid_n,      layer->grid_m,
                              thin,       rows.get(), open.get(), reach.get(), flags.get()};
    HiddenSearch under = top;
    under.heights = layer->bottom;
    under.shift = 2;
    const i32 last = hide_top(stack, slot, run, &top);
    const i32 first = hide_underside(stack, slot, run, &under);
    return alone ? SlotRun{first, last} : SlotRun{0, I32_MAX};
}
