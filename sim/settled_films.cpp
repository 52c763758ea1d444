// Rows (m) run outside, columns (n) inside throughout.
#include "sim/settled_films.h"

#include <cassert>
#include <cmath>
#include "platform/memory.h"

// Parts of the section's width: what the arithmetic of the steps leaves where nothing should be.
static constexpr f32 ROUNDING = 1e-6F;

f32 film_rounding(const Stack *stack) {
    assert(stack != nullptr);
    return stack->width * ROUNDING;
}

bool film_is_shown(const Layer *layer) {
    return layer != nullptr && layer->color[3] > 0.0F && layer->grid_n > 1;
}

SettledFilm settled_film_create(const Stack *stack, i32 rows) {
    assert(stack != nullptr && rows > 0 && rows <= stack->grid_m);
    const i64 count = i64{rows} * stack->grid_n;
    return {rows, memory_scratch<f32>(count), memory_scratch<f32>(count), memory_scratch<u8>(count)};
}

FilmFloor film_floor_create(const Stack *stack, i32 rows) {
    assert(stack != nullptr && rows > 0 && rows <= stack->grid_m);
    const i64 count = i64{rows} * stack->grid_n;
    FilmFloor floor = {count, memory_scratch<f32>(count), memory_scratch<f32>(count),
                       memory_scratch<i32>(count)};
    const Layer *lowest = nullptr;
    for (i32 slot = 0; slot < stack->layer_count && lowest == nullptr; ++slot) {
        lowest = film_is_shown(stack->layers[slot]) ? stack->layers[slot] : nullptr;
    }
    for (i64 point = 0; point < count; ++point) {
        const f32 height = lowest != nullptr ? lowest->bottom[point] : 0.0F;
        floor.height[point] = floor.surface[point] = std::isfinite(height) ? height : 0.0F;
        floor.ended_by[point] = -1;
    }
    return floor;
}

u8 film_settle_point(const Layer *layer, i64 point, f32 rounding, f32 ground, f32 *bottom, f32 *top) {
    const bool floats = layer->bottom[point] > ground + rounding;
    const f32 low = floats ? layer->bottom[point] : ground;
    const bool there = layer->top[point] > low + rounding;
    *bottom = there ? low : ground;
    *top = there ? layer->top[point] : ground;
    return there ? static_cast<u8>(floats ? FILM_THERE | FILM_FLOATS : FILM_THERE) : u8{0};
}

// Settles each point by itself.
static void settle_points(const Layer *layer, f32 rounding, const FilmFloor *floor, SettledFilm *film) {
    const i64 count = i64{film->rows} * layer->grid_n;
    for (i64 point = 0; point < count; ++point) {
        film->presence[point] = film_settle_point(layer, point, rounding, floor->height[point],
                                                  &film->bottom[point], &film->top[point]);
    }
}

// The underside of the first film above a slot that is there at a point, or infinity.
static f32 ceiling_above(const Stack *stack, i32 slot, i64 point) {
    for (i32 i = slot + 1; i < stack->layer_count; ++i) {
        const Layer *layer = stack->layers[i];
        if (film_is_shown(layer) && layer->top[point] - layer->bottom[point] > film_rounding(stack)) {
            return layer->bottom[point];
        }
    }
    return INFINITY;
}

// What the points around one tell about how a film ends there.
struct FilmEnd {
    bool rests;           // the film rests on what is below it at one of them
    bool hangs;           // it floats at one of them, and holds on to what is above it
    f32 lowest, highest;  // underside at those where the film is
};

static FilmEnd look_around(const Stack *stack, i32 slot, const SettledFilm *film, i64 n, i64 m) {
    const f32 rounding = film_rounding(stack);
    FilmEnd end = {false, false, INFINITY, -INFINITY};
    for (i64 y = m > 0 ? m - 1 : 0; y <= m + 1 && y < film->rows; ++y) {
        for (i64 x = n > 0 ? n - 1 : 0; x <= n + 1 && x < stack->grid_n; ++x) {
            const i64 point = y * stack->grid_n + x;
            const u8 presence = film->presence[point];
            if ((presence & FILM_THERE) == 0) {
                continue;
            }
            const bool floats = (presence & FILM_FLOATS) != 0;
            end.rests = end.rests || !floats;
            end.lowest = std::fmin(end.lowest, film->bottom[point]);
            end.highest = std::fmax(end.highest, film->bottom[point]);
            end.hangs =
                end.hangs || (floats && ceiling_above(stack, slot, point) <= film->top[point] + rounding);
        }
    }
    return end;
}

// Where a film ends at a point beside it, micrometres. One that floats beneath another film ends in the air,
// or at the film that it hangs on, and does not come down like a curtain. In all other places it ends on what
// is below it.
static f32 end_height(const Stack *stack, i32 slot, const FilmEnd *end, i64 point, f32 ground) {
    const f32 ceiling = ceiling_above(stack, slot, point);
    if (end->rests || !(ceiling < INFINITY)) {
        return ground;
    }
    if (end->hangs) {
        return ceiling;
    }
    const f32 before = stack->layers[slot]->bottom[point];
    const f32 lowest = std::fmin(end->lowest, ceiling);
    const f32 highest = std::fmin(end->highest, ceiling);
    return before > highest ? highest : before > lowest ? before : lowest;
}

// Whether each point of a row has points beside it where the film is: 0 or FILM_THERE.
static void row_beside(const Stack *stack, const SettledFilm *film, i64 m, u8 *beside) {
    const i64 grid_n = stack->grid_n;
    const u8 *here = film->presence.get() + m * grid_n;
    const u8 *before = m > 0 ? here - grid_n : here;
    const u8 *behind = m + 1 < film->rows ? here + grid_n : here;
    for (i64 n = 0; n < grid_n; ++n) {
        beside[n] = static_cast<u8>((before[n] | here[n] | behind[n]) & FILM_THERE);
    }
    u8 left = 0;
    for (i64 n = 0; n < grid_n; ++n) {
        const u8 own = beside[n];
        const u8 right = n + 1 < grid_n ? beside[n + 1] : u8{0};
        beside[n] = static_cast<u8>(left | own | right);
        left = own;
    }
}

// Settles the points beside the film's edge.
static void settle_ends(const Stack *stack, i32 slot, const FilmFloor *floor, SettledFilm *film) {
    const f32 rounding = film_rounding(stack);
    const Owned<u8[]> beside = memory_scratch<u8>(stack->grid_n);
    for (i64 m = 0; m < film->rows; ++m) {
        row_beside(stack, film, m, beside.get());
        for (i64 n = 0; n < stack->grid_n; ++n) {
            const i64 point = m * stack->grid_n + n;
            if (beside[n] == 0 || (film->presence[point] & FILM_THERE) != 0) {
                continue;
            }
            const f32 ground = floor->height[point];
            const FilmEnd end = look_around(stack, slot, film, n, m);
            const f32 height = end_height(stack, slot, &end, point, ground);
            if (height > ground + rounding) {
                film->bottom[point] = film->top[point] = height;
                film->presence[point] = FILM_FLOATS;
            }
        }
    }
}

void film_settle(const Stack *stack, i32 slot, const FilmFloor *floor, SettledFilm *film) {
    assert(stack != nullptr && floor != nullptr && film != nullptr);
    assert(slot >= 0 && slot < stack->layer_count && film_is_shown(stack->layers[slot]));
    assert(layer_fits(stack->layers[slot], stack) && floor->count == i64{film->rows} * stack->grid_n);
    settle_points(stack->layers[slot], film_rounding(stack), floor, film);
    settle_ends(stack, slot, floor, film);
}

void film_floor_raise(i32 slot, const SettledFilm *film, FilmFloor *floor) {
    assert(film != nullptr && floor != nullptr);
    for (i64 point = 0; point < floor->count; ++point) {
        const u8 presence = film->presence[point];
        const bool there = (presence & FILM_THERE) != 0;
        floor->height[point] = film->top[point];
        floor->surface[point] = there ? film->top[point] : floor->surface[point];
        floor->ended_by[point] = there ? -1 : presence != 0 ? slot : floor->ended_by[point];
    }
}
