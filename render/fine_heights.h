// fine_heights.h: the heights that fine pictures are drawn of. The films of a stack are settled on each other
// from the bottom up, until every film has a bottom and a top at every grid point, where it is absent too,
// and none reaches into another. Two films that touch at all corners of a triangle of the grid then touch all
// over it, and between films that touch there is no crack. Micrometres; grids are N x M, point (n, m) is m *
// N + n.
#pragma once
#include "process/stack.h"
#include "sim/layer.h"

enum FinePresence : u8 {
    FINE_THERE = 1,   // the film is thicker than rounding
    FINE_FLOATS = 2,  // there is air between it, or its end, and what is below
};

// One film over the grid. Where it is absent its bottom and its top are the same: on what is below it, or, at
// the points beside an edge that lies open or floats, in the air where it ends.
struct FineFilm {
    Owned<f32[]> bottom, top;
    Owned<u8[]> presence;  // FINE_THERE, FINE_FLOATS
};

// What the next film is settled on.
struct FineFloor {
    Owned<f32[]> height;    // the top of the film settled last
    Owned<f32[]> surface;   // the top of the last film that is there
    Owned<i32[]> ended_by;  // slot of the film whose end in the air is the floor; -1 otherwise
};

// Whether fine pictures show the layer: there, not clear as air, on a grid of more than one column.
bool fine_film_is_drawn(const Layer *layer);

// Room for a film of the stack; filled by fine_film_settle.
FineFilm fine_film_create(const Stack *stack);

// The underside of the lowest film that is drawn, or 0.
FineFloor fine_floor_create(const Stack *stack);

// Settles the film in a slot, which is drawn, on the floor. What is thinner than rounding, film or air, is
// nothing; where heights overlap the lower film keeps its own. Any heights are safe, nan too.
void fine_film_settle(const Stack *stack, i32 slot, const FineFloor *floor, FineFilm *film);

// Makes the settled film of that slot the floor.
void fine_floor_raise(const Stack *stack, i32 slot, const FineFilm *film, FineFloor *floor);
