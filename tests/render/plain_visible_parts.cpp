#include "plain_visible_parts.h"

#include <cmath>
#include <initializer_list>
#include <vector>

struct PlainParts {
    const Layer *layer;
    i64 grid_n, grid_m;
    f32 thin;
    u8 *parts;
};

// The points of a triangle of a quad: A or B.
struct Corners {
    i64 points[3];
};

static Corners triangle(const PlainParts *plain, i64 quad, bool is_b) {
    const i64 right = quad + 1;
    const i64 behind = quad + plain->grid_n;
    return is_b ? Corners{{right, behind + 1, behind}} : Corners{{quad, right, behind}};
}

static bool is_quad(const PlainParts *plain, i64 point) {
    return point % plain->grid_n + 1 < plain->grid_n && point / plain->grid_n + 1 < plain->grid_m;
}

static f32 thickness(const Layer *layer, i64 point) {
    return layer->top[point] - layer->bottom[point];
}

static bool is_thin(const PlainParts *plain, const Layer *layer, i64 point) {
    return thickness(layer, point) > 0.0F && thickness(layer, point) < plain->thin;
}

static void mark_triangle(const PlainParts *plain, i64 quad, bool is_b) {
    const Corners corners = triangle(plain, quad, is_b);
    const Layer *layer = plain->layer;
    bool there = false;
    bool level = true;
    for (const i64 point : corners.points) {
        there = there || layer->top[point] != layer->bottom[point];
        level = level && layer->bottom[point] == layer->bottom[corners.points[0]];
    }
    if (there) {
        plain->parts[quad] |= static_cast<u8>(is_b ? PART_TOP_B : PART_TOP_A);
    }
    if (there && !level) {
        plain->parts[quad] |= static_cast<u8>(is_b ? PART_UNDER_B : PART_UNDER_A);
    }
}

// Whether the top is level over the squares around a point, none of which may be missing.
static bool is_level_around(const PlainParts *plain, i64 point) {
    const i64 n = point % plain->grid_n;
    const i64 m = point / plain->grid_n;
    if (n < 1 || m < 1 || n + 1 >= plain->grid_n || m + 1 >= plain->grid_m) {
        return false;
    }
    for (i64 dm = -1; dm <= 1; ++dm) {
        for (i64 dn = -1; dn <= 1; ++dn) {
            if (plain->layer->top[point + dm * plain->grid_n + dn] != plain->layer->top[point]) {
                return false;
            }
        }
    }
    return !is_thin(plain, plain->layer, point);
}

static void mark_quad(const PlainParts *plain, i64 quad) {
    plain->parts[quad] = 0;
    if (!is_quad(plain, quad)) {
        return;
    }
    mark_triangle(plain, quad, false);
    mark_triangle(plain, quad, true);
    const i64 behind = quad + plain->grid_n;
    if (is_level_around(plain, quad) && is_level_around(plain, quad + 1) && is_level_around(plain, behind) &&
        is_level_around(plain, behind + 1)) {
        plain->parts[quad] |= PART_LEVEL;
    }
}

// Whether a layer outside of the run touches the top at a corner of a quad.
static bool is_touched(const PlainParts *plain, const Layer *other, i64 quad) {
    for (const i64 point : {quad, quad + 1, quad + plain->grid_n, quad + plain->grid_n + 1}) {
        const f32 top = plain->layer->top[point];
        if (std::fabs(other->top[point] - top) < plain->thin ||
            std::fabs(other->bottom[point] - top) < plain->thin) {
            return true;
        }
    }
    return false;
}

// A triangle that may be hidden: where its cover ends at its corners, and whether every layer there went on
// from that until now.
struct PlainCover {
    f32 reach[3];
    bool open = true;
};

// Two for each quad, A and B.
using PlainCovers = std::vector<PlainCover>;

static PlainCovers start_covers(const PlainParts *plain, bool of_top) {
    const f32 *heights = of_top ? plain->layer->top : plain->layer->bottom;
    PlainCovers covers(static_cast<size_t>(2 * plain->grid_n * plain->grid_m));
    for (size_t i = 0; i < covers.size(); ++i) {
        const i64 quad = static_cast<i64>(i / 2);
        for (i32 k = 0; k < 3 && is_quad(plain, quad); ++k) {
            covers[i].reach[k] = heights[triangle(plain, quad, i % 2 == 1).points[k]];
        }
    }
    return covers;
}

// Adds a layer to the cover of a triangle. Returns whether the triangle is hidden.
static bool cover_triangle(const PlainParts *plain, Corners corners, bool of_top, const Layer *other,
                           PlainCover *cover) {
    const f32 *heights = of_top ? plain->layer->top : plain->layer->bottom;
    const f32 *surface = of_top ? other->bottom : other->top;
    const f32 *behind = of_top ? other->top : other->bottom;
    bool there = false;
    bool joins = true;
    for (i32 k = 0; k < 3; ++k) {
        there = there || thickness(other, corners.points[k]) != 0.0F;
        joins = joins && surface[corners.points[k]] == cover->reach[k];
    }
    bool hidden = true;
    for (i32 k = 0; k < 3; ++k) {
        cover->reach[k] = there && joins ? behind[corners.points[k]] : cover->reach[k];
        hidden = hidden && std::fabs(cover->reach[k] - heights[corners.points[k]]) >= plain->thin;
    }
    cover->open = cover->open && (joins || !there);
    return cover->open && hidden;
}

// Takes the part away where the layers until now cover its corners; the quad is no longer level where the
// last one is thin.
static void hide_quad(const PlainParts *plain, i64 quad, bool of_top, const Layer *other,
                      PlainCovers *covers) {
    for (const bool is_b : {false, true}) {
        const Corners corners = triangle(plain, quad, is_b);
        for (const i64 point : corners.points) {
            if (is_thin(plain, other, point)) {
                plain->parts[quad] = static_cast<u8>(plain->parts[quad] & ~PART_LEVEL);
            }
        }
        const u8 part = is_b ? (of_top ? PART_TOP_B : PART_UNDER_B) : (of_top ? PART_TOP_A : PART_UNDER_A);
        if (cover_triangle(plain, corners, of_top, other,
                           &(*covers)[static_cast<size_t>(2 * quad + (is_b ? 1 : 0))])) {
            plain->parts[quad] = static_cast<u8>(plain->parts[quad] & ~part);
        }
    }
}

static i64 count_row(const PlainParts *plain, i64 m, u8 part) {
    i64 count = 0;
    for (i64 n = 0; n < plain->grid_n; ++n) {
        count += (plain->parts[m * plain->grid_n + n] & part) != 0 ? 1 : 0;
    }
    return count;
}

// Rows that have none of the parts are passed over. Returns how many are left.
static i64 hide_by_layer(const PlainParts *plain, bool of_top, const Layer *other, PlainCovers *covers) {
    const u8 a = of_top ? PART_TOP_A : PART_UNDER_A;
    const u8 b = of_top ? PART_TOP_B : PART_UNDER_B;
    i64 left = 0;
    for (i64 m = 1; m + 1 < plain->grid_m; ++m) {
        const bool open = count_row(plain, m, a | b) > 0;
        for (i64 n = 0; open && n + 1 < plain->grid_n; ++n) {
            hide_quad(plain, m * plain->grid_n + n, of_top, other, covers);
        }
        left += count_row(plain, m, a) + count_row(plain, m, b);
    }
    return left;
}

// Looks through the layers above for the top, below for the underside. Returns the last slot that counts.
static i32 hide_by_layers(const PlainParts *plain, const Stack *stack, i32 slot, i32 end, bool of_top) {
    i64 left = 0;
    for (i64 m = 1; m + 1 < plain->grid_m; ++m) {
        left += count_row(plain, m, of_top ? PART_TOP_A | PART_TOP_B : PART_UNDER_A | PART_UNDER_B);
    }
    PlainCovers covers = start_covers(plain, of_top);
    const i32 step = of_top ? 1 : -1;
    i32 at = slot;
    for (i32 looked_at = 0; left > 0 && (looked_at < 2 || left > plain->grid_n * plain->grid_m / 32);) {
        if (at == end) {
            return of_top ? I32_MAX : at;
        }
        at += step;
        if (stack->layers[at] != nullptr) {
            left = hide_by_layer(plain, of_top, stack->layers[at], &covers);
            ++looked_at;
        }
    }
    return at;
}

SlotRun plain_visible_parts_find(const Stack *stack, i32 slot, SlotRun run, u8 *parts) {
    const Layer *layer = stack->layers[slot];
    const PlainParts plain = {layer, layer->grid_n, layer->grid_m, stack->width * 1e-5F, parts};
    const i64 count = plain.grid_n * plain.grid_m;
    for (i64 quad = 0; quad < count; ++quad) {
        mark_quad(&plain, quad);
    }
    bool alone = true;
    for (i32 i = 0; i < stack->layer_count; ++i) {
        if (stack->layers[i] == nullptr || (i >= run.first && i <= run.last)) {
            continue;
        }
        alone = false;
        for (i64 quad = 0; quad < count; ++quad) {
            if (is_quad(&plain, quad) && is_touched(&plain, stack->layers[i], quad)) {
                parts[quad] = static_cast<u8>(parts[quad] & ~PART_LEVEL);
            }
        }
    }
    const i32 last = hide_by_layers(&plain, stack, slot, run.last, true);
    const i32 first = hide_by_layers(&plain, stack, slot, run.first, false);
    return alone ? SlotRun{first, last} : SlotRun{0, I32_MAX};
}
