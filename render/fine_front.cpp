#include "render/fine_front.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>
#include "platform/memory.h"

// The films between two that are there at both columns, or above the last of them.
struct FrontZone {
    i32 n;
    i32 first, last;  // films; some of them are at neither column
    f32 left_low, right_low;
    f32 left_high, right_high;
    bool left_air, right_air;  // there is air between these heights
};

// The film's heights at two columns.
static FrontPiece film_piece(const FineSection *section, i32 film, i32 n) {
    const i64 at = i64{film} * section->stack->grid_n + n;
    return {film,
            n,
            section->front_low[at],
            section->front_high[at],
            section->front_low[at + 1],
            section->front_high[at + 1]};
}

static bool is_left(const FrontPiece *piece) {
    return piece->left_high > piece->left_low;
}

static bool is_right(const FrontPiece *piece) {
    return piece->right_high > piece->right_low;
}

static void append_piece(FineFront *front, const FrontPiece *piece) {
    if (is_left(piece) || is_right(piece)) {
        array_append(&front->pieces, &front->piece_count, &front->piece_capacity, *piece);
    }
}

// Goes up through the films of a zone: how high they reach, and whether there is air between them or before
// the end of one.
static void measure_zone(const FineSection *section, FrontZone *zone) {
    zone->left_high = zone->left_low;
    zone->right_high = zone->right_low;
    zone->left_air = zone->right_air = false;
    for (i32 film = zone->first; film <= zone->last; ++film) {
        const FrontPiece piece = film_piece(section, film, zone->n);
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
static void append_side(const FineSection *section, const FrontZone *zone, bool left, FineFront *front) {
    i32 before = -1;  // the piece that the next one lies on
    for (i32 film = zone->first; film <= zone->last; ++film) {
        FrontPiece piece = film_piece(section, film, zone->n);
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
        before = front->piece_count;
        append_piece(front, &piece);
    }
    if (before >= 0) {
        FrontPiece *top = &front->pieces[before];
        top->left_high = zone->left_high;
        top->right_high = zone->right_high;
    }
}

// Where both columns have something in the zone, the films of one of them take all of it, those with the film
// on top or those that meet nothing but air. Otherwise they run out to the next column.
static void append_zone(const FineSection *section, const FrontZone *zone, FineFront *front) {
    i32 left_films = 0;
    i32 right_films = 0;
    bool left_on_top = false;
    for (i32 film = zone->first; film <= zone->last; ++film) {
        const FrontPiece piece = film_piece(section, film, zone->n);
        left_films += is_left(&piece) ? 1 : 0;
        right_films += is_right(&piece) ? 1 : 0;
        left_on_top = is_left(&piece) || (left_on_top && !is_right(&piece));
    }
    const bool both_reach = zone->left_high > zone->left_low && zone->right_high > zone->right_low;
    const bool left_fits = !zone->left_air && (right_films == 0 || (!zone->right_air && left_on_top));
    const bool right_fits = !zone->right_air && (left_films == 0 || (!zone->left_air && !left_on_top));
    if (both_reach && ((left_films > 0 && left_fits) || (right_films > 0 && right_fits))) {
        append_side(section, zone, left_films > 0 && left_fits, front);
        return;
    }
    for (i32 film = zone->first; film <= zone->last; ++film) {
        const FrontPiece piece = film_piece(section, film, zone->n);
        append_piece(front, &piece);
    }
}

// Whether several films run out to a point between two that are there at both columns, as beside the wall of
// a hole that was filled. They would all bend down to it.
static bool is_fan(const FineSection *section, const FrontZone *zone) {
    i32 films = 0;
    for (i32 film = zone->first; film <= zone->last; ++film) {
        const FrontPiece piece = film_piece(section, film, zone->n);
        films += is_left(&piece) || is_right(&piece) ? 1 : 0;
    }
    const bool left_reaches = zone->left_high > zone->left_low;
    const bool right_reaches = zone->right_high > zone->right_low;
    return films > 1 && left_reaches != right_reaches && !zone->left_air && !zone->right_air;
}

// The films of a fan end straight at their column instead, and the film that is the wall takes its place: the
// one above or the one below, whichever goes up or down more steeply.
//   below   piece of the film below the zone; null where there is none
static void close_fan(const FrontZone *zone, FrontPiece *below, FrontPiece *above) {
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
static bool find_zone(const FineSection *section, FrontZone *zone, FrontPiece *both) {
    bool closed = false;
    for (i32 film = zone->first; film < section->film_count && !closed; ++film) {
        *both = film_piece(section, film, zone->n);
        closed = is_left(both) && is_right(both);
        zone->last = closed ? film - 1 : film;
    }
    measure_zone(section, zone);
    if (closed) {
        zone->left_air = zone->left_air || both->left_low > zone->left_high;
        zone->right_air = zone->right_air || both->right_low > zone->right_high;
        zone->left_high = both->left_low;
        zone->right_high = both->right_low;
    }
    return closed;
}

static void append_columns(const FineSection *section, i32 n, FineFront *front) {
    const FrontPiece lowest = film_piece(section, 0, n);
    FrontZone zone = {n, 0, -1, lowest.left_low, lowest.right_low, 0.0F, 0.0F, false, false};
    i32 below = -1;  // piece of the film below the zone
    bool closed = true;
    while (closed && zone.first < section->film_count) {
        FrontPiece both = {};
        closed = find_zone(section, &zone, &both);
        const f32 left_top = both.left_high;
        const f32 right_top = both.right_high;
        if (closed && is_fan(section, &zone)) {
            close_fan(&zone, below >= 0 ? &front->pieces[below] : nullptr, &both);
        } else {
            append_zone(section, &zone, front);
        }
        if (closed) {
            below = front->piece_count;
            append_piece(front, &both);
        }
        zone = {n, zone.last + 2, zone.last + 1, left_top, right_top, 0.0F, 0.0F, false, false};
    }
}

FineFront fine_front_create(const FineSection *section) {
    assert(section != nullptr && section->stack != nullptr);
    const i32 grid_n = section->stack->grid_n;
    FineFront front = {nullptr, 0, 0, memory_scratch_zeroed<i32>(i64{grid_n} + 1), grid_n};
    for (i32 n = 0; n + 1 < grid_n; ++n) {
        front.first[n] = front.piece_count;
        if (section->film_count > 0) {
            append_columns(section, n, &front);
        }
    }
    front.first[grid_n - 1] = front.first[grid_n] = front.piece_count;
    return front;
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
static SideHeights collect_side(const FineFront *front, i32 n, f32 low, f32 high) {
    SideHeights side = {nullptr, 0, 0};
    array_append(&side.items, &side.count, &side.capacity, low, 16);
    if (!(high > low)) {
        return side;
    }
    for (i32 i = front->first[n > 0 ? n - 1 : 0]; i < front->first[n + 1]; ++i) {
        const FrontPiece *piece = &front->pieces[i];
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
void fine_front_triangles(const FineFront *front, i32 piece, Owned<FrontTriangle[]> *triangles, i32 *count,
                          i32 *capacity) {
    assert(front != nullptr && piece >= 0 && piece < front->piece_count);
    assert(triangles != nullptr && count != nullptr && capacity != nullptr);
    const FrontPiece *p = &front->pieces[piece];
    const SideHeights left = collect_side(front, p->n, p->left_low, p->left_high);
    const SideHeights right = collect_side(front, p->n + 1, p->right_low, p->right_high);
    i32 l = 0;
    i32 r = 0;
    while (l + 1 < left.count || r + 1 < right.count) {
        const bool goes_left =
            r + 1 == right.count || (l + 1 < left.count && left.items[l + 1] <= right.items[r + 1]);
        const f32 next = goes_left ? left.items[l + 1] : right.items[r + 1];
        const FrontTriangle triangle = {{p->n, p->n + 1, goes_left ? p->n : p->n + 1},
                                        {left.items[l], right.items[r], next}};
        array_append(triangles, count, capacity, triangle);
        l += goes_left ? 1 : 0;
        r += goes_left ? 0 : 1;
    }
}
