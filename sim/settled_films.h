// settled_films.h: the heights that fine pictures and profiles are drawn of. The films of a stack are settled
// on each other from the bottom up, until every film has a bottom and a top at every grid point, where it is
// absent too, and none reaches into another. Two films that touch at all corners of a triangle of the grid
// then touch all over it, and between films that touch there is no crack. Micrometres; grids are N x ROWS,
// the first rows of the section, point (n, m) is m * N + n.
#pragma once
#include "process/stack.h"
#include "sim/layer.h"

enum FilmPresence : u8 {
    FILM_THERE = 1,   // the film is thicker than rounding
    FILM_FLOATS = 2,  // there is air between it, or its end, and what is below
};

// One film over the grid. Where it is absent its bottom and its top are the same: on what is below it, or, at
// the points beside an edge that floats beneath another film, in the air where it ends.
struct SettledFilm {
    i32 rows;
    Owned<f32[]> bottom, top;
    Owned<u8[]> presence;  // FILM_THERE, FILM_FLOATS
};

// What the next film is settled on.
struct FilmFloor {
    i64 count;              // of points
    Owned<f32[]> height;    // the top of the film settled last
    Owned<f32[]> surface;   // the top of the last film that is there
    Owned<i32[]> ended_by;  // slot of the film whose end in the air is the floor; -1 otherwise
};

// Whether fine pictures and profiles show the layer: there, not clear as air, on a grid of more than one
// column.
bool film_is_shown(const Layer *layer);

// Heights up to this (micrometres) are what the arithmetic of the steps leaves where nothing should be.
f32 film_rounding(const Stack *stack);

// One film at one point, settled on the ground. Returns its FilmPresence; where it is absent both heights are
// the ground.
u8 film_settle_point(const Layer *layer, i64 point, f32 rounding, f32 ground, f32 *bottom, f32 *top);

// Room for a film of the stack; filled by film_settle.
//   rows   that are settled, 1 to M; with fewer than M the section ends behind the last of them
SettledFilm settled_film_create(const Stack *stack, i32 rows);

// The underside of the lowest film that is shown, or 0.
FilmFloor film_floor_create(const Stack *stack, i32 rows);

// Settles the film in a slot, which is shown, on the floor, which has as many rows. What is thinner than
// rounding, film or air, is nothing; where heights overlap the lower film keeps its own. Any heights are
// safe, nan too.
void film_settle(const Stack *stack, i32 slot, const FilmFloor *floor, SettledFilm *film);

// Makes the settled film of that slot the floor.
void film_floor_raise(i32 slot, const SettledFilm *film, FilmFloor *floor);
