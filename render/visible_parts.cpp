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

// Where parts are looked for that another layer hides.
struct HiddenSearch {
    const f32 *heights;  // the surface in question of the layer in question
    u8 *parts;
    u8 mask;   // of its two triangles
    u8 shift;  // 0 for the top, 2 for the underside
    i64 grid_n, grid_m;
    f32 thin;      // thickness below which a layer hides nothing
    u8 *row_open;  // 1 for each row of quads that still has such a part
    u8 *flags;     // 4 x N, scratch
};

// What one row of points tells of a layer that may hide the parts: where it does, and whether it is thin
// anywhere.
struct CoverRow {
    u8 *covers;
    bool any_thin;
};

static void cover_row_find(const HiddenSearch *search, const Layer *other, const f32 *surface, i64 m,
                           CoverRow *row) {
    const i64 start = m * search->grid_n;
    row->any_thin = part_row_covers(
        {search->heights + start, surface + start, other->top + start, other->bottom + start, search->thin},
        search->grid_n, row->covers);
}

// Quads at whose corners the other layer is thin are not level: both keep the same triangles there.
static void unmark_thin(const HiddenSearch *search, const Layer *other, i64 m) {
    const i64 grid_n = search->grid_n;
    const i64 start = m * grid_n;
    const RowFlags is_thin = {search->flags + 2 * grid_n, search->flags + 3 * grid_n};
    part_row_thin(other->top + start, other->bottom + start, search->thin, grid_n, is_thin.near_row);
    part_row_thin(other->top + start + grid_n, other->bottom + start + grid_n, search->thin, grid_n,
                  is_thin.far_row);
    u8 *row = search->parts + start;
    for (i64 n = 0; n + 1 < grid_n; ++n) {
        row[n] = static_cast<u8>(row[n] & ~(corners_any(is_thin, n) != 0 ? PART_LEVEL : 0));
    }
}

// Takes away what coincides with `surface`, the underside or the top of another layer that is thick at all of
// the corners: near the foot of its wall the two surfaces that meet are too close for depths to tell, and
// both are drawn. Returns how many triangles are left to look for.
static i64 hide_parts(const HiddenSearch *search, const Layer *other, const f32 *surface) {
    const i64 grid_n = search->grid_n;
    const u8 bit_a = static_cast<u8>(1 << search->shift);
    const u8 bit_b = static_cast<u8>(2 << search->shift);
    CoverRow near_row = {search->flags, false};
    CoverRow far_row = {search->flags + grid_n, false};
    i64 known = -1;  // the row whose flags the far ones are
    i64 left = 0;
    for (i64 m = 0; m + 1 < search->grid_m; ++m) {
        if (search->row_open[m] == 0) {
            continue;
        }
        std::swap(near_row, far_row);
        if (known != m) {
            cover_row_find(search, other, surface, m, &near_row);
        }
        known = m + 1;
        cover_row_find(search, other, surface, known, &far_row);
        const i32 open =
            part_row_hide(search->parts + m * grid_n, grid_n, near_row.covers, far_row.covers, bit_a, bit_b);
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
    bool open = false;
    search->row_open[0] = 0;
    for (i64 m = 1; m + 1 < search->grid_m; ++m) {
        const u8 *row = search->parts + m * search->grid_n;
        u8 any = 0;
        for (i64 n = 0; n < search->grid_n; ++n) {
            any = static_cast<u8>(any | row[n]);
        }
        search->row_open[m] = static_cast<u8>((any & search->mask) != 0 ? 1 : 0);
        open = open || search->row_open[m] != 0;
    }
    return open;
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
            left = hide_parts(search, above, above->bottom);
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
            left = hide_parts(search, below, below->top);
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
    const Owned<u8[]> rows = memory_scratch<u8>(layer->grid_m);
    const Owned<u8[]> flags = memory_scratch<u8>(4 * grid_n);
    const HiddenSearch top = {layer->top, parts,      PART_TOP_A | PART_TOP_B, 0, grid_n, layer->grid_m, thin,
                              rows.get(), flags.get()};
    HiddenSearch under = top;
    under.heights = layer->bottom;
    under.mask = PART_UNDER_A | PART_UNDER_B;
    under.shift = 2;
    const i32 last = hide_top(stack, slot, run, &top);
    const i32 first = hide_underside(stack, slot, run, &under);
    return alone ? SlotRun{first, last} : SlotRun{0, I32_MAX};
}
