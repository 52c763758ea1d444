#include "sim/cut_face.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>
#include <utility>
#include "platform/memory.h"
#include "sim/settled_films.h"

// Heights of a border between two columns: at the left one, half-way as seen from the left and as seen from
// the right, and at the right one. Half-way they differ where the border has a step.
struct CutBorder {
    f64 left, before, behind, right;
};

// A film between two columns. Its halves are pieces of their own where it has a step, or any film beside it.
struct CutFilm {
    i32 film;
    bool in_left, in_right;  // the halves that it lies in
    CutBorder low, high;
};

// The films between two that are there at both columns, or above the last of them.
struct CutZone {
    i32 first, last;  // films; some of them are at neither column
    bool is_closed;   // by a film above, which is the last one but one more
    bool has_films;   // at one of the columns
    bool has_air;     // at one of the columns, between films or before the end of one
};

// What lies between two columns.
struct CutColumns {
    const CutFace *face;
    i32 n;
    Owned<CutFilm[]> films;  // from the bottom up
    i32 count, capacity;
    bool is_halved;
};

static CutBorder straight(f64 left, f64 right) {
    const f64 middle = (left + right) * 0.5;
    return {left, middle, middle, right};
}

// The film as it is there at the two columns, or runs out from one to the other.
static CutFilm film_between(const CutColumns *columns, i32 film) {
    const i64 at = i64{film} * columns->face->grid_n + columns->n;
    const f32 *low = columns->face->low.get() + at;
    const f32 *high = columns->face->high.get() + at;
    return {film, true, true, straight(static_cast<f64>(low[0]), static_cast<f64>(low[1])),
            straight(static_cast<f64>(high[0]), static_cast<f64>(high[1]))};
}

static bool is_left(const CutFilm *film) {
    return film->high.left > film->low.left;
}

static bool is_right(const CutFilm *film) {
    return film->high.right > film->low.right;
}

static void append_film(CutColumns *columns, const CutFilm *film) {
    if (is_left(film) || is_right(film)) {
        array_append(&columns->films, &columns->count, &columns->capacity, *film, 64);
    }
}

// The zone above the films settled so far, as far as the next film that is there at both columns, which is
// *above then.
//   floor   top of the film below
static CutZone find_zone(const CutColumns *columns, i32 first, const CutBorder *floor, CutFilm *above) {
    CutZone zone = {first, first - 1, false, false, false};
    f64 left = floor->left;
    f64 right = floor->right;
    for (i32 i = first; i < columns->face->film_count && !zone.is_closed; ++i) {
        const CutFilm film = film_between(columns, i);
        zone.has_air = zone.has_air || film.low.left > left || film.low.right > right;
        left = film.high.left;
        right = film.high.right;
        zone.is_closed = is_left(&film) && is_right(&film);
        if (zone.is_closed) {
            *above = film;
        } else {
            zone.has_films = zone.has_films || is_left(&film) || is_right(&film);
            zone.last = i;
        }
    }
    return zone;
}

// Makes room for films that end half-way: of the two borders of a closed zone without air one stays straight,
// and the other has a step. The straight one is that which rises less, if the films beyond have room for it:
// the other one is the wall. False when neither has.
//   below   null where nothing is
static bool make_step(CutFilm *below, CutBorder *floor, CutFilm *above) {
    const f64 left = above->low.left - floor->left;
    const f64 right = above->low.right - floor->right;
    const CutBorder ceiling = {above->low.left, floor->before + left, floor->behind + right,
                               above->low.right};
    const CutBorder ground = {floor->left, above->low.before - left, above->low.behind - right, floor->right};
    const bool fits_above = ceiling.before <= above->high.before && ceiling.behind <= above->high.behind;
    const bool fits_below =
        below != nullptr && ground.before >= below->low.before && ground.behind >= below->low.behind;
    const bool is_wall_below =
        std::fabs(floor->right - floor->left) > std::fabs(above->low.right - above->low.left);
    if (fits_below && (is_wall_below || !fits_above)) {
        below->high = *floor = ground;
    } else if (fits_above) {
        above->low = ceiling;
    }
    return fits_above || fits_below;
}

// The films of a zone, each in the half of its column.
//   floor, ceiling   the borders of the zone
static void append_halves(CutColumns *columns, const CutZone *zone, const CutBorder *floor,
                          const CutBorder *ceiling) {
    const f64 left_rise = floor->before - floor->left;
    const f64 right_rise = floor->behind - floor->right;
    f64 before = floor->before;
    f64 behind = floor->behind;
    for (i32 i = zone->first; i <= zone->last; ++i) {
        CutFilm film = film_between(columns, i);
        film.in_left = is_left(&film);
        film.in_right = is_right(&film);
        if (film.in_left) {
            film.low.before = before;
            before = film.high.left == ceiling->left ? ceiling->before : film.high.left + left_rise;
            film.high.before = before;
        } else if (film.in_right) {
            film.low.behind = behind;
            behind = film.high.right == ceiling->right ? ceiling->behind : film.high.right + right_rise;
            film.high.behind = behind;
        }
        append_film(columns, &film);
    }
    columns->is_halved = true;
}

static void find_films(CutColumns *columns) {
    const CutFilm lowest = film_between(columns, 0);
    CutBorder floor = lowest.low;
    i32 below = -1;  // of the films here: the one below the zone
    CutZone zone = {0, -2, true, false, false};
    while (zone.is_closed && zone.last + 2 < columns->face->film_count) {
        CutFilm above = {};
        zone = find_zone(columns, zone.last + 2, &floor, &above);
        const bool may_step = zone.is_closed && zone.has_films && !zone.has_air;
        if (may_step && make_step(below >= 0 ? &columns->films[below] : nullptr, &floor, &above)) {
            append_halves(columns, &zone, &floor, &above.low);
        } else {
            for (i32 i = zone.first; i <= zone.last; ++i) {
                const CutFilm film = film_between(columns, i);
                append_film(columns, &film);
            }
        }
        if (zone.is_closed) {
            below = columns->count;
            append_film(columns, &above);
            floor = above.high;
        }
    }
}

static void append_piece(CutFace *face, const CutPiece *piece) {
    if (piece->left_high > piece->left_low || piece->right_high > piece->right_low) {
        array_append(&face->pieces, &face->piece_count, &face->piece_capacity, *piece);
    }
}

static void append_columns(CutFace *face, const CutColumns *columns) {
    const f32 left = static_cast<f32>(columns->n);
    const f32 middle = left + 0.5F;
    const f32 right = left + 1.0F;
    for (i32 i = 0; i < columns->count; ++i) {
        const CutFilm *film = &columns->films[i];
        const CutPiece whole = {
            film->film, left, right, film->low.left, film->high.left, film->low.right, film->high.right};
        const CutPiece half = {
            film->film, left, middle, film->low.left, film->high.left, film->low.before, film->high.before};
        if (film->in_left) {
            append_piece(face, columns->is_halved ? &half : &whole);
        }
    }
    for (i32 i = 0; i < columns->count && columns->is_halved; ++i) {
        const CutFilm *film = &columns->films[i];
        const CutPiece half = {film->film,        middle,          right,           film->low.behind,
                               film->high.behind, film->low.right, film->high.right};
        if (film->in_right) {
            append_piece(face, &half);
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

void cut_face_close_slits(CutFace *face) {
    assert(face != nullptr && face->piece_count == 0);
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

void cut_face_divide(CutFace *face) {
    assert(face != nullptr && face->piece_count == 0);
    CutColumns columns = {face, 0, nullptr, 0, 0, false};
    for (i32 n = 0; n + 1 < face->grid_n; ++n) {
        face->first[n] = face->piece_count;
        columns.n = n;
        columns.count = 0;
        columns.is_halved = false;
        if (face->film_count > 0) {
            find_films(&columns);
            append_columns(face, &columns);
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

// The heights of corners along one side of a piece.
struct SideHeights {
    Owned<f32[]> items;
    i32 count, capacity;
};

static void collect_height(SideHeights *side, f64 height, f32 low, f32 high) {
    const f32 narrow = static_cast<f32>(height);
    if (narrow > low && narrow < high) {
        array_append(&side->items, &side->count, &side->capacity, narrow, 16);
    }
}

// From the bottom to the top of a side: its ends, and the corners of all pieces that meet it.
static SideHeights collect_side(const CutFace *face, f32 column, f64 lowest, f64 highest) {
    const f32 low = static_cast<f32>(lowest);
    const f32 high = static_cast<f32>(highest);
    SideHeights side = {nullptr, 0, 0};
    array_append(&side.items, &side.count, &side.capacity, low, 16);
    if (!(high > low)) {
        return side;
    }
    const i32 n = truncate_i32(static_cast<f64>(column));
    for (i32 i = face->first[n > 0 ? n - 1 : 0]; i < face->first[n + 1]; ++i) {
        const CutPiece *piece = &face->pieces[i];
        if (piece->left == column) {
            collect_height(&side, piece->left_low, low, high);
            collect_height(&side, piece->left_high, low, high);
        } else if (piece->right == column) {
            collect_height(&side, piece->right_low, low, high);
            collect_height(&side, piece->right_high, low, high);
        }
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
    assert(face != nullptr && piece >= 0 && piece < face->piece_count);
    assert(triangles != nullptr && count != nullptr && capacity != nullptr);
    const CutPiece *p = &face->pieces[piece];
    const SideHeights left = collect_side(face, p->left, p->left_low, p->left_high);
    const SideHeights right = collect_side(face, p->right, p->right_low, p->right_high);
    i32 l = 0;
    i32 r = 0;
    while (l + 1 < left.count || r + 1 < right.count) {
        const bool goes_left =
            r + 1 == right.count || (l + 1 < left.count && left.items[l + 1] <= right.items[r + 1]);
        const f32 next = goes_left ? left.items[l + 1] : right.items[r + 1];
        const CutTriangle triangle = {{p->left, p->right, goes_left ? p->left : p->right},
                                      {left.items[l], right.items[r], next}};
        array_append(triangles, count, capacity, triangle);
        l += goes_left ? 1 : 0;
        r += goes_left ? 0 : 1;
    }
}
