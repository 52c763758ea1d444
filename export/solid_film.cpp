// Rows (m) run outside, columns (n) inside throughout.
#include "export/solid_film.h"

#include <cassert>
#include <cmath>

bool solid_film_is_there(const Layer *layer, i64 point) {
    const f32 bottom = layer->bottom[point];
    const f32 top = layer->top[point];
    return bottom >= -F32_MAX && top <= F32_MAX && top > bottom;
}

SolidFloor solid_floor_create(const Stack *stack) {
    assert(stack != nullptr);
    const i64 count = stack_point_count(stack);
    SolidFloor floor = {memory_scratch<f32>(count)};
    for (i64 point = 0; point < count; ++point) {
        floor.height[point] = -INFINITY;
    }
    return floor;
}

// The underside of the lowest film above a slot that is there at a point, or infinity.
static f32 ceiling_above(const Stack *stack, i32 slot, i64 point) {
    for (i32 i = slot + 1; i < stack->layer_count; ++i) {
        const Layer *layer = stack->layers[i];
        if (layer != nullptr && solid_film_is_there(layer, point)) {
            return layer->bottom[point];
        }
    }
    return INFINITY;
}

// Where a film runs out at a point.
static f32 edge_height(const Stack *stack, i32 slot, i64 point, f32 floor) {
    const f32 ceiling = ceiling_above(stack, slot, point);
    f32 height = stack->layers[slot]->bottom[point];
    if (!std::isfinite(height)) {
        height = std::isfinite(floor) ? floor : std::isfinite(ceiling) ? ceiling : 0.0F;
    }
    height = height > ceiling ? ceiling : height;
    return height < floor ? floor : height;
}

// Marks the points of a row that share a triangle with a point where the film is.
static void row_beside(const SolidFilm *film, i64 m, u8 *beside) {
    const i64 grid_n = film->grid_n;
    const u8 *here = film->there.get() + m * grid_n;
    const u8 *before = m > 0 ? here - grid_n : here;
    const u8 *behind = m + 1 < film->grid_m ? here + grid_n : here;
    for (i64 n = 0; n < grid_n; ++n) {
        beside[n] = static_cast<u8>(before[n] | behind[n]);
    }
    for (i64 n = 0; n + 1 < grid_n; ++n) {
        beside[n] = static_cast<u8>(beside[n] | here[n + 1] | before[n + 1]);
        beside[n + 1] = static_cast<u8>(beside[n + 1] | here[n] | behind[n]);
    }
}

SolidFilm solid_film_create(const Stack *stack, i32 slot, const SolidFloor *floor) {
    assert(stack != nullptr && floor != nullptr && slot >= 0 && slot < stack->layer_count);
    const Layer *layer = stack->layers[slot];
    assert(layer != nullptr && layer_fits(layer, stack));
    const i64 grid_n = stack->grid_n;
    const i64 count = stack_point_count(stack);
    SolidFilm film = {stack->grid_n,
                      stack->grid_m,
                      stack->spacing,
                      memory_scratch<u8>(count),
                      memory_scratch<f32>(count),
                      memory_scratch<f32>(count),
                      0};
    for (i64 point = 0; point < count; ++point) {
        const u8 there = static_cast<u8>(solid_film_is_there(layer, point) ? 1 : 0);
        film.there[point] = there;
        film.bottom[point] = layer->bottom[point];
        film.top[point] = layer->top[point];
        floor->height[point] = there != 0 ? layer->top[point] : floor->height[point];
        film.there_count += there;
    }
    const Owned<u8[]> beside = memory_scratch<u8>(grid_n);
    for (i64 m = 0; m < stack->grid_m && film.there_count > 0; ++m) {
        row_beside(&film, m, beside.get());
        for (i64 n = 0; n < grid_n; ++n) {
            const i64 point = m * grid_n + n;
            if (film.there[point] == 0 && beside[n] != 0) {
                const f32 height = edge_height(stack, slot, point, floor->height[point]);
                film.bottom[point] = film.top[point] = floor->height[point] = height;
            }
        }
    }
    return film;
}
