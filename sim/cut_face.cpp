#include "sim/cut_face.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>
#include <utility>
#include "platform/memory.h"
#include "sim/settled_films.h"

// The films between two that are there at both columns, or above the last of them.
struct CutZone {
    i32 n;
    i32 first, last;  // films; some of them are at neither column
    f32 left_low, right_low;
    f32 left_high, right_high;
    bool left_air, right_air;  // there is air between these heights
};

// The film's heights at two columns.
static CutPiece film_piece(const CutFace *face, i32 film, i32 n) {
    const i64 at = i64{film} * face->grid_n + n;
    return {film, n, face->low[at], face->high[at], face->low[at + 1], face->high[at + 1]};
}

static bool is_left(const CutPiece *piece) {
    return piece->left_high > piece->left_low;
}

static bool is_right(const CutPiece *piece) {
    return piece->right_high > piece->right_low;
}

static void append_piece(CutFace *face, const CutPiece *piece) {
    if (is_left(piece) || is_right(piece)) {
        array_append(&face->pieces, &face->piece_count, &face->piece_capacity, *piece);
    }
}

// Goes up through the films of a zone: how high they reach, and whether there is air between them or before
// the end of one.
static void measure_zone(const CutFace *face, CutZone *zone) {
    zone->left_high = zone->left_low;
    zone->right_high = zone->right_low;
    zone->left_air = zone->right_air = false;
    for (i32 film = zone->first; film <= zone->last; ++film) {
        const CutPiece piece = film_piece(face, film, zone->n);
        zone->left_air = zone->left_air || piece.left_low > zone->left_high;
        zone->right_air = zone->right_air || piece.right_low > zone->right_high;
        zone->left_high = is_left(&piece) ? piece.left_high : zone->left_high;
        zone->right_high = is_right(&piece) ? piece.right_high : zone->right_high;
    }
}

static f32 bounded(f32 height, f32 low, f32 high) {
    return height < low ? low : height > high ? high : height;
}

// The films of one side fill the whole zone: those with the film on top, whose surface reaches as far.
static void append_side(CutFace *face, const CutZone *zone, bool left) {
    i32 before = -1;  // the piece that the next one lies on
    for (i32 film = zone->first; film <= zone->last; ++film) {
        CutPiece piece = film_piece(face, film, zone->n);
        if (!(left ? is_left(&piece) : is_right(&piece))) {
            continue;
        }
        if (left) {
            piece.right_low = bounded(piece.left_low, zone->right_low, zone->right_high);
            piece.right_high = bounded(piece.left_high, zone->right_low, zone->right_high);
            piece.right_low = before < 0 ? zone->right_low : piece.right_low;
        } else {
            piece.left_low = bounded(piece.right_low, zone->left_low, zone->left_high);
            piece.left_high = bounded(piece.right_high, zone->left_low, zone->left_high);
            piece.left_low = before < 0 ? zone->left_low : piece.left_low;
        }
        before = face->piece_count;
        append_piece(face, &piece);
    }
    if (before >= 0) {
        CutPiece *top = &face->pieces[before];
        top->left_high = zone->left_high;
        top->right_high = zone->right_high;
    }
}

// Where both columns have something in the zone, the films of one of them take all of it, those with the film
// on top or those that meet nothing but air. Otherwise they run out to the next column.
static void append_zone(CutFace *face, const CutZone *zone) {
    i32 left_films = 0;
    i32 right_films = 0;
    bool left_on_top = false;
    for (i32 film = zone->first; film <= zone->last; ++film) {
        const CutPiece piece = film_piece(face, film, zone->n);
        left_films += is_left(&piece) ? 1 : 0;
        right_films += is_right(&piece) ? 1 : 0;
        left_on_top = is_left(&piece) || (left_on_top && !is_right(&piece));
    }
    const bool both_reach = zone->left_high > zone->left_low && zone->right_high > zone->right_low;
    const bool left_fits = !zone->left_air && (right_films == 0 || (!zone->right_air && left_on_top));
    const bool right_fits = !zone->right_air && (left_films == 0 || (!zone->left_air && !left_on_top));
    if (both_reach && ((left_films > 0 && left_fits) || (right_films > 0 && right_fits))) {
        append_side(face, zone, left_films > 0 && left_fits);
        return;
    }
    for (i32 film = zone->first; film <= zone->last; ++film) {
        const CutPiece piece = film_piece(face, film, zone->n);
        append_piece(face, &piece);
    }
}

// Whether several films run out to a point between two that are there at both columns, as beside the wall of
// a hole that was filled. They would all bend down to it.
static bool is_fan(const CutFace *face, const CutZone *zone) {
    i32 films = 0;
    for (i32 film = zone->first; film <= zone->last; ++film) {
        const CutPiece piece = film_piece(face, film, zone->n);
        films += is_left(&piece) || is_right(&piece) ? 1 : 0;
    }
    const bool left_reaches = zone->left_high > zone->left_low;
    const bool right_reaches = zone->right_high > zone->right_low;
    return films > 1 && left_reaches != right_reaches && !zone->left_air && !zone->right_air;
}

// The films of a fan end straight at their column instead, and the film that is the wall takes its place: the
// one above or the one below, whichever goes up or down more steeply.
//   below   piece of the film below the zone; null where there is none
static void close_fan(const CutZone *zone, CutPiece *below, CutPiece *above) {
    const f32 rise_below = std::fabs(zone->right_low - zone->left_low);
    const f32 rise_above = std::fabs(zone->right_high - zone->left_high);
    if (below == nullptr || rise_above >= rise_below) {
        above->left_low = zone->left_low;
        above->right_low = zone->right_low;
    } else {
        below->left_high = zone->left_high;
        below->right_high = zone->right_high;
    }
}

// The zone above the films settled so far, as far as the next film that is there at both columns. Returns
// whether there is one, whose piece is *both.
static bool find_zone(const CutFace *face, CutZone *zone, CutPiece *both) {
    bool closed = false;
    for (i32 film = zone->first; film < face->film_count && !closed; ++film) {
        *both = film_piece(face, film, zone->n);
        closed = is_left(both) && is_right(both);
        zone->last = closed ? film - 1 : film;
    }
    measure_zone(face, zone);
    if (closed) {
        zone->left_air = zone->left_air || both->left_low > zone->left_high;
        zone->right_air = zone->right_air || both->right_low > zone->right_high;
        zone->left_high = both->left_low;
        zone->right_high = both->right_low;
    }
    return closed;
}

static void append_columns(CutFace *face, i32 n) {
    const CutPiece lowest = film_piece(face, 0, n);
    CutZone zone = {n, 0, -1, lowest.left_low, lowest.right_low, 0.0F, 0.0F, false, false};
    i32 below = -1;  // piece of the film below the zone
    bool closed = true;
    while (closed && zone.first < face->film_count) {
        CutPiece both = {};
        closed = find_zone(face, &zone, &both);
        const f32 left_top = both.left_high;
        const f32 right_top = both.right_high;
        if (closed && is_fan(face, &zone)) {
            close_fan(&zone, below >= 0 ? &face->pieces[below] : nullptr, &both);
        } else {
            append_zone(face, &zone);
        }
        if (closed) {
            below = face->piece_count;
            append_piece(face, &both);
        }
        zone = {n, zone.last + 2, zone.last + 1, left_top, right_top, 0.0F, 0.0F, false, false};
    }
}

// Whether a column of the cut face has air between two heights.
static bool has_air(const CutFace *face, i32 n, f32 low, f32 high) {
    const i64 grid_n = face->grid_n;
    f32 top = face->low[n];
    for (i64 film = 0; film < face->film_count; ++film) {
        const f32 bottom = face->low[film * grid_n + n];
        if (bottom > top && bottom > low && top < high) {
            return true;
        }
        top = face->high[film * grid_n + n];
    }
    return high > top;
}

// Closes slits in the cut face: air in a single column, with none at its height on either side. Beside a wall
// a step goes by the height of the neighbouring column, and leaves such air where nothing is hollow.
static void close_slits(CutFace *face) {
    const i64 grid_n = face->grid_n;
    for (i32 n = 1; n + 1 < grid_n; ++n) {
        f32 *low = face->low.get() + n;
        f32 *high = face->high.get() + n;
        f32 top = face->film_count > 0 ? low[0] : 0.0F;  // of the films that are there
        for (i64 film = 0; film < face->film_count; ++film) {
            const bool is_there = high[film * grid_n] > low[film * grid_n];
            const f32 bottom = low[film * grid_n];
            const bool is_slit = is_there && bottom > top && !has_air(face, n - 1, top, bottom) &&
                                 !has_air(face, n + 1, top, bottom);
            for (i64 i = film; is_slit && i >= 0 && low[i * grid_n] > top; --i) {
                low[i * grid_n] = top;
                high[i * grid_n] = i < film ? top : high[i * grid_n];
            }
            top = is_there ? high[film * grid_n] : top;
        }
    }
}

CutFace cut_face_begin(const Stack *stack) {
    assert(stack != nullptr && stack->grid_n > 0);
    CutFace face = {};
    face.grid_n = stack->grid_n;
    face.slots = memory_scratch<i32>(stack->layer_count);
    for (i32 slot = 0; slot < stack->layer_count; ++slot) {
        if (film_is_shown(stack->layers[slot])) {
            face.slots[face.film_count++] = slot;
        }
    }
    face.low = memory_scratch<f32>(i64{face.film_count} * face.grid_n);
    face.high = memory_scratch<f32>(i64{face.film_count} * face.grid_n);
    face.first = memory_scratch_zeroed<i32>(i64{face.grid_n} + 1);
    return face;
}

void cut_face_take(CutFace *face, i32 film, const SettledFilm *settled) {
    assert(face != nullptr && settled != nullptr && film >= 0 && film < face->film_count);
    const i64 first = i64{film} * face->grid_n;
    const size_t row = static_cast<size_t>(face->grid_n) * sizeof(f32);
    std::memcpy(face->low.get() + first, settled->bottom.get(), row);
    std::memcpy(face->high.get() + first, settled->top.get(), row);
}

void cut_face_divide(CutFace *face) {
    assert(face != nullptr && face->piece_count == 0);
    close_slits(face);
    for (i32 n = 0; n + 1 < face->grid_n; ++n) {
        face->first[n] = face->piece_count;
        if (face->film_count > 0) {
            append_columns(face, n);
        }
    }
    face->first[face->grid_n - 1] = face->first[face->grid_n] = face->piece_count;
}

CutFace cut_face_create(const Stack *stack) {
    CutFace face = cut_face_begin(stack);
    SettledFilm settled = settled_film_create(stack, 1);
    FilmFloor floor = film_floor_create(stack, 1);
    for (i32 film = 0; film < face.film_count; ++film) {
        film_settle(stack, face.slots[film], &floor, &settled);
        cut_face_take(&face, film, &settled);
        film_floor_raise(face.slots[film], &settled, &floor);
    }
    cut_face_divide(&face);
    return face;
}

// The heights of corners along one column of the grid, within a side of a piece.
struct SideHeights {
    Owned<f32[]> items;
    i32 count, capacity;
};

static void collect_height(SideHeights *side, f32 height, f32 low, f32 high) {
    if (height > low && height < high) {
        array_append(&side->items, &side->count, &side->capacity, height, 16);
    }
}

// From the bottom to the top of a side: its ends, and the corners of all pieces that meet it.
static SideHeights collect_side(const CutFace *face, i32 n, f32 low, f32 high) {
    SideHeights side = {nullptr, 0, 0};
    array_append(&side.items, &side.count, &side.capacity, low, 16);
    if (!(high > low)) {
        return side;
    }
    for (i32 i = face->first[n > 0 ? n - 1 : 0]; i < face->first[n + 1]; ++i) {
        const CutPiece *piece = &face->pieces[i];
        const bool on_its_left = piece->n == n;
        collect_height(&side, on_its_left ? piece->left_low : piece->right_low, low, high);
        collect_height(&side, on_its_left ? piece->left_high : piece->right_high, low, high);
    }
    f32 *items = side.items.get();
    std::sort(items + 1, items + side.count);
    side.count = static_cast<i32>(std::unique(items + 1, items + side.count) - items);
    array_append(&side.items, &side.count, &side.capacity, high, 16);
    return side;
}

// The two sides are joined by triangles from the bottom up, always from the side that is behind.
void cut_face_triangles(const CutFace *face, i32 piece, Owned<CutTriangle[]> *triangles, i32 *count,
                        i32 *capacity) {
    assert(front != nullptr && piece >= 0 && piece < face->piece_count);
    assert(triangles != nullptr && count != nullptr && capacity != nullptr);
    const CutPiece *p = &face->pieces[piece];
    const SideHeights left = collect_side(face, p->n, p->left_low, p->left_high);
    const SideHeights right = collect_side(face, p->n + 1, p->right_low, p->right_high);
    i32 l = 0;
    i32 r = 0;
    while (l + 1 < left.count || r + 1 < right.count) {
        const bool goes_left =
            r + 1 == right.count || (l + 1 < left.count && left.items[l + 1] <= right.items[r + 1]);
        const f32 next = goes_left ? left.items[l + 1] : right.items[r + 1];
        const CutTriangle triangle = {{p->n, p->n + 1, goes_left ? p->n : p->n + 1},
                                      {left.items[l], right.items[r], next}};
        array_append(triangles, count, capacity, triangle);
        l += goes_left ? 1 : 0;
        r += goes_left ? 0 : 1;
    }
}
