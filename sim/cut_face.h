// cut_face.h: the cut face of a section, its first row, as fine pictures and profiles show it: between two
// columns of the grid the films lie side by side without a crack and without overlap. A film that is there at
// both columns goes straight from one to the other. Films that are there at one column only, and meet others
// there at the next, end in a straight vertical edge; in the open, where nothing takes their place, they run
// out to the next column, as their surfaces do. Micrometres.
#pragma once
#include "sim/settled_films.h"

// What a film fills between the columns n and n + 1.
struct CutPiece {
    i32 film;  // of the face
    i32 n;
    f32 left_low, left_high;    // at column n
    f32 right_low, right_high;  // at column n + 1
};

struct CutFace {
    i32 grid_n, film_count;
    Owned<i32[]> slots;        // of the films that are shown, bottom first
    Owned<f32[]> low, high;    // N for each film: its bottom and its top
    Owned<CutPiece[]> pieces;  // by columns, then from the bottom up
    i32 piece_count, piece_capacity;
    Owned<i32[]> first;  // N + 1: the first piece at or behind each column
};

// A triangle of the cut face: columns and heights of its corners, counter-clockwise as seen from the front.
struct CutTriangle {
    i32 n[3];
    f32 height[3];
};

// The cut face of a stack as its heights are.
CutFace cut_face_create(const Stack *stack);

// The same in parts, for those who settle whole films: the films of a stack, without their heights,
CutFace cut_face_begin(const Stack *stack);

// the heights of one, the first row of what was settled,
void cut_face_take(CutFace *face, i32 film, const SettledFilm *settled);

// and the pieces, once all have their heights.
void cut_face_divide(CutFace *face);

// The triangles of a piece, whose sides get a corner wherever a piece of the next columns has one.
//   triangles   a growable array, which they are appended to
void cut_face_triangles(const CutFace *face, i32 piece, Owned<CutTriangle[]> *triangles, i32 *count,
                        i32 *capacity);
