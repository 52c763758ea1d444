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
    i32 first, last;  // films; some of them are at neither column
    bool is_closed;   // by a film above, which is the last one but one more
    bool has_films;   // at one of the columns
    bool has_air;     // at one of the columns, between films or before the end of one
    bool has_floats;  // one of the films lies on air
    f64 left, right;  // how high its films reach
};

static CutBorder straight(f64 left, f64 right) {
    const f64 middle = (left + right) * 0.5;
    return {left, middle, middle, right};
}

// The film as it is there at the two columns, or runs out from one to the other.
static CutFilm film_between(const CutColumns *columns, i32 film) {
    const i64 left = film * columns->stride + columns->left;
    const i64 right = film * columns->stride + columns->right;
    return {film,
            true,
            true,
            false,
            straight(static_cast<f64>(columns->low[left]), static_cast<f64>(columns->low[right])),
            straight(static_cast<f64>(columns->high[left]), static_cast<f64>(columns->high[right]))};
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
    CutZone zone = {first, first - 1, false, false, false, false, floor->left, floor->right};
    for (i32 i = first; i < columns->film_count && !zone.is_closed; ++i) {
        const CutFilm film = film_between(columns, i);
        zone.has_air = zone.has_air || film.low.left > zone.left || film.low.right > zone.right;
        zone.is_closed = is_left(&film) && is_right(&film);
        if (zone.is_closed) {
            *above = film;
        } else {
            zone.has_floats = zone.has_air;
            zone.has_films = zone.has_films || is_left(&film) || is_right(&film);
            zone.left = is_left(&film) ? film.high.left : zone.left;
            zone.right = is_right(&film) ? film.high.right : zone.right;
            zone.last = i;
        }
    }
    return zone;
}

// Makes room for films that end half-way: of the two borders of a zone without air one stays straight, and
// the other has a step. The straight one is that which rises less, if the films beyond have room for it: the
// other one is the wall. False when neither has.
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

// Whether the films of a zone with air fit beneath the film that closes it when they go half-way as they are.
// Both borders are straight, since air shows them.
static bool fits_cavity(const CutColumns *columns, const CutZone *zone, const CutBorder *floor,
                        const CutFilm *above) {
    const f64 rounding = static_cast<f64>(columns->rounding);
    const f64 before = floor->before + (zone->left - floor->left);
    const f64 behind = floor->behind + (zone->right - floor->right);
    const bool touches = zone->left == above->low.left || zone->right == above->low.right;
    const f64 change = (above->low.left - floor->left) - (above->low.right - floor->right);
    return !zone->has_floats && before <= above->low.before + rounding &&
           behind <= above->low.behind + rounding && (!touches || std::fabs(change) <= rounding);
}

// The films of a zone, each in the half of its column.
//   floor, ceiling   the borders of the zone
static void append_halves(CutColumns *columns, const CutZone *zone, const CutBorder *floor,
                          const CutBorder *ceiling, bool is_open) {
    const f64 left_rise = floor->before - floor->left;
    const f64 right_rise = floor->behind - floor->right;
    for (i32 i = zone->first; i <= zone->last; ++i) {
        CutFilm film = film_between(columns, i);
        film.in_left = is_left(&film);
        film.in_right = is_right(&film);
        film.is_open = is_open;
        if (film.in_left) {
            film.low.before = film.low.left == floor->left ? floor->before : film.low.left + left_rise;
            film.high.before = film.high.left == ceiling->left ? ceiling->before : film.high.left + left_rise;
        } else if (film.in_right) {
            film.low.behind = film.low.right == floor->right ? floor->behind : film.low.right + right_rise;
            film.high.behind =
                film.high.right == ceiling->right ? ceiling->behind : film.high.right + right_rise;
        }
        append_film(columns, &film);
    }
    columns->is_halved = true;
}

static void append_run_out(CutColumns *columns, const CutZone *zone) {
    for (i32 i = zone->first; i <= zone->last; ++i) {
        const CutFilm film = film_between(columns, i);
        append_film(columns, &film);
    }
}

static CutBorder level_border(const CutBorder *border) {
    return {border->left, border->left, border->right, border->right};
}

// The lowest film whose top has to have a step for one above it to have one: where a film is too thin for it,
// its underside and what it lies on step with it. -1 where that cannot be.
static i32 lowest_step(const CutColumns *columns, i32 from) {
    for (i32 i = from; i >= 0; --i) {
        const CutFilm *film = &columns->films[i];
        const CutBorder level = level_border(&film->high);
        if (!is_left(film) || !is_right(film)) {
            return -1;
        }
        if (level.before >= film->low.before && level.behind >= film->low.behind) {
            return i;
        }
        const CutFilm *below = i > 0 ? &columns->films[i - 1] : nullptr;
        if (below != nullptr &&
            (below->high.left != film->low.left || below->high.right != film->low.right)) {
            return -1;
        }
    }
    return from < 0 ? -1 : 0;
}

// In the open all films of the zone end as they are, and so does what they lie on: its top goes on level to
// the middle, which is the wall. False where that has no room for it.
//   below   of the films here; -1 where nothing is
static bool step_floor(CutColumns *columns, i32 below, CutBorder *floor) {
    const CutBorder level = level_border(floor);
    const i32 lowest = lowest_step(columns, below);
    const bool fits = below < 0 || lowest >= 0;
    if (!fits || level.left == level.right) {
        return fits;
    }
    *floor = level;
    for (i32 i = below; i >= lowest && i >= 0; --i) {
        CutFilm *film = &columns->films[i];
        film->high = level_border(&film->high);
        film->is_open = true;
        const bool fits_low = film->high.before >= film->low.before && film->high.behind >= film->low.behind;
        film->low = i > lowest || !fits_low ? level_border(&film->low) : film->low;
    }
    return true;
}

// The films of a zone that has some.
//   above   in: the film that closes the zone; without one it may be anything
//   below   of the films here: what the zone lies on; -1 where nothing is
static void append_zone(CutColumns *columns, const CutZone *zone, i32 below, CutBorder *floor,
                        CutFilm *above) {
    bool fits = false;
    bool is_open = true;
    CutBorder ceiling = {zone->left, zone->left, zone->right, zone->right};
    if (!zone->is_closed) {
        fits = step_floor(columns, below, floor);
    } else if (zone->has_air) {
        fits = fits_cavity(columns, zone, floor, above);
        ceiling = above->low;
    } else {
        fits = make_step(below >= 0 ? &columns->films[below] : nullptr, floor, above);
        ceiling = above->low;
        is_open = false;
    }
    if (fits) {
        append_halves(columns, zone, floor, &ceiling, is_open);
    } else {
        append_run_out(columns, zone);
    }
}

static void find_films(CutColumns *columns) {
    columns->count = 0;
    columns->is_halved = false;
    if (columns->film_count == 0) {
        return;
    }
    CutBorder floor = film_between(columns, 0).low;
    i32 below = -1;  // of the films here: the one below the zone
    CutZone zone = {0, -2, true, false, false, false, 0.0, 0.0};
    while (zone.is_closed && zone.last + 2 < columns->film_count) {
        CutFilm above = {};
        zone = find_zone(columns, zone.last + 2, &floor, &above);
        if (zone.has_films) {
            append_zone(columns, &zone, below, &floor, &above);
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
    const f32 left = static_cast<f32>(columns->left);
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
    face.rounding = film_rounding(stack);
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
    CutColumns columns = {};
    columns.low = face->low.get();
    columns.high = face->high.get();
    columns.stride = face->grid_n;
    columns.film_count = face->film_count;
    columns.rounding = face->rounding;
    for (i32 n = 0; n + 1 < face->grid_n; ++n) {
        face->first[n] = face->piece_count;
        columns.left = n;
        columns.right = n + 1;
        find_films(&columns);
        append_columns(face, &columns);
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

CutEdges cut_edges_create(const Stack *stack, const CutFace *face) {
    assert(stack != nullptr && face != nullptr);
    CutEdges edges = {};
    edges.stack = stack;
    edges.face = face;
    edges.low = memory_scratch<f32>(i64{face->film_count} * 2);
    edges.high = memory_scratch<f32>(i64{face->film_count} * 2);
    edges.columns.low = edges.low.get();
    edges.columns.high = edges.high.get();
    edges.columns.stride = 2;
    edges.columns.right = 1;
    edges.columns.film_count = face->film_count;
    edges.columns.rounding = face->rounding;
    return edges;
}

// All films at one point, without the ends of others beside it.
static void settle_column(CutEdges *edges, i64 point, i64 side) {
    Layer **layers = edges->stack->layers;
    const CutFace *face = edges->face;
    f32 ground = face->film_count > 0 ? layers[face->slots[0]]->bottom[point] : 0.0F;
    ground = std::isfinite(ground) ? ground : 0.0F;
    for (i64 film = 0; film < face->film_count; ++film) {
        f32 *top = &edges->high[2 * film + side];
        film_settle_point(layers[face->slots[film]], point, face->rounding, ground,
                          &edges->low[2 * film + side], top);
        ground = *top;
    }
}

CutEdge cut_edges_find(CutEdges *edges, i32 film, i64 one, i64 two) {
    assert(edges != nullptr && film >= 0 && film < edges->face->film_count);
    settle_column(edges, one, 0);
    settle_column(edges, two, 1);
    find_films(&edges->columns);
    CutEdge edge = {CUT_EDGE_OTHER, 0.0F, 0.0F, 0.0F};
    for (i32 i = 0; i < edges->columns.count; ++i) {
        const CutFilm *found = &edges->columns.films[i];
        if (found->film == film && found->is_open && found->in_left) {
            edge = {found->in_right ? CUT_EDGE_STEP : CUT_EDGE_END, static_cast<f32>(found->low.before),
                    static_cast<f32>(found->high.before), static_cast<f32>(found->high.behind)};
        }
    }
    return edge;
}
