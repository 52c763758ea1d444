// solid_film.h: the films of a stack as what solids are made of: where each one is there, and how its edges
// run out. Micrometres; grids are N x M, point (n, m) is m * N + n.
//
// Between grid points heights are linear over the triangles of the grid: A over (n, m), (n + 1, m), (n, m +
// 1) and B over (n + 1, m), (n + 1, m + 1), (n, m + 1). A film that ends between two points runs out to no
// thickness at the second, as its walls in pictures do. So the volume of a film is that of its heights: to
// spacing^2 / 12 times the thickness at the four corners of the grid, that of trapezoids over the quads.
//
// At the point where a film runs out it has a height and no thickness. That is where its underside was before
// it was taken away there, unless something else fills the place: then it is the nearest height between what
// lies below and what lies above. Thus, if the heights themselves are, the films are in order at every point,
// one above the other, and so they are between the points: no solid reaches into another, and films that
// touch at three points touch all over the triangle.
#pragma once
#include "platform/owned.h"
#include "process/stack.h"
#include "sim/layer.h"

// What lies below the next film. Made once for a step and raised film by film.
struct SolidFloor {
    Owned<f32[]> height;  // -infinity where nothing is
};

struct SolidFilm {
    i32 grid_n, grid_m;
    f32 spacing;
    Owned<u8[]> there;         // 1 where the film has a thickness
    Owned<f32[]> bottom, top;  // where it is there, and, both the same, beside its edge; elsewhere unset
    i64 there_count;           // points
};

// Whether the layer has a thickness at a point. Where it has none, a negative one or heights that are no
// numbers it is absent.
bool solid_film_is_there(const Layer *layer, i64 point);

SolidFloor solid_floor_create(const Stack *stack);

// The film in a slot that holds a layer, on the floor; the floor is raised by it. The films of a stack are to
// be made in the order of their slots. Any heights are safe.
SolidFilm solid_film_create(const Stack *stack, i32 slot, const SolidFloor *floor);
