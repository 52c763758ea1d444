// The walls along the sides of the grid. Both borders of a wall have the corners that the top and the
// underside have there.
#include "export/solid_builder.h"

#include <cassert>

// One side, followed with the section on the left.
struct SolidSide {
    i64 n, m;           // where it begins
    i64 across, along;  // from one point to the next
    i64 steps;
};

static void find_sides(const SolidFilm *film, SolidSide sides[4]) {
    const i64 last_n = i64{film->grid_n} - 1;
    const i64 last_m = i64{film->grid_m} - 1;
    sides[0] = {0, 0, 1, 0, last_n};
    sides[1] = {last_n, 0, 0, 1, last_m};
    sides[2] = {last_n, last_m, -1, 0, last_n};
    sides[3] = {0, last_m, 0, -1, last_m};
}

// Whether both borders of the wall go on straight and level at a point between two others.
static bool is_smooth(const SolidFilm *film, i64 before, i64 point, i64 after) {
    return (film->there[before] & film->there[point] & film->there[after]) != 0 &&
           film->top[before] == film->top[point] && film->top[after] == film->top[point] &&
           film->bottom[before] == film->bottom[point] && film->bottom[after] == film->bottom[point];
}

void solid_sides_mark(SolidBuilder *builder) {
    assert(builder != nullptr);
    const SolidFilm *film = builder->film;
    SolidSide sides[4];
    find_sides(film, sides);
    for (const SolidSide &side : sides) {
        const i64 step = side.along * film->grid_n + side.across;
        i64 point = side.m * film->grid_n + side.n;
        for (i64 i = 1; i < side.steps; ++i) {
            point += step;
            if (!is_smooth(film, point - step, point, point + step)) {
                builder->top.marks[point] |= SOLID_CORNER;
                builder->underside.marks[point] |= SOLID_CORNER;
            }
        }
    }
}

// The corners that a wall has come to on its two borders.
struct SolidWall {
    u32 low, high;
};

static void append_next_point(SolidBuilder *builder, i64 n, i64 m, SolidWall *wall) {
    const i64 point = m * builder->film->grid_n + n;
    if (level_point_is_kept(&builder->underside.blocks, n, m)) {
        const u32 next = solid_underside_vertex(builder, point);
        if (wall->low != wall->high) {
            solid_append_triangle(builder, wall->low, next, wall->high);
        }
        wall->low = next;
    }
    if (level_point_is_kept(&builder->top.blocks, n, m)) {
        const u32 next = solid_top_vertex(builder, point);
        if (next != wall->low) {
            solid_append_triangle(builder, wall->low, next, wall->high);
        }
        wall->high = next;
    }
}

static void append_side(SolidBuilder *builder, const SolidSide *side) {
    const SolidFilm *film = builder->film;
    SolidWall wall = {};
    bool joined = false;  // whether the wall has come to the last point
    i64 n = side->n;
    i64 m = side->m;
    for (i64 i = 0; i < side->steps; ++i) {
        const i64 point = m * film->grid_n + n;
        n += side->across;
        m += side->along;
        if ((film->there[point] | film->there[m * film->grid_n + n]) == 0) {
            joined = false;
            continue;
        }
        if (!joined) {
            wall = {solid_underside_vertex(builder, point), solid_top_vertex(builder, point)};
            joined = true;
        }
        append_next_point(builder, n, m, &wall);
    }
}

void solid_sides_append(SolidBuilder *builder) {
    assert(builder != nullptr);
    SolidSide sides[4];
    find_sides(builder->film, sides);
    for (const SolidSide &side : sides) {
        append_side(builder, &side);
    }
}
