// cut_face.h: the cut face of a section, its first row, as fine pictures and profiles show it: between two
// columns of the grid the films lie side by side without a crack and without overlap. A film that is there at
// both columns goes straight from one to the other. One that is there at one of them only ends half-way
// between them, in a straight vertical edge, so that each film has exactly the area of its heights. Where
// that would tear a film that is there at both, it runs out to a point at the next column instead, which is
// the same area. Air is seen where the heights have it. Micrometres.
#pragma once
#include "sim/settled_films.h"

// What a film fills between two neighbouring columns, or in one half of the way between them. Heights
// half-way are means, for which f64 is exact.
struct CutPiece {
    i32 film;         // of the face
    f32 left, right;  // its sides, in columns: n and n + 1, n and n + 0.5, or n + 0.5 and n + 1
    f64 left_low, left_high;
    f64 right_low, right_high;
};

struct CutFace {
    i32 grid_n, film_count;
    Owned<i32[]> slots;        // of the films that are shown, bottom first
    Owned<f32[]> low, high;    // N for each film: its bottom and its top
    Owned<CutPiece[]> pieces;  // by their left side, then from the bottom up
    i32 piece_count, piece_capacity;
    Owned<i32[]> first;  // N + 1: the first piece at or behind each column
};

// A triangle of the cut face: columns and heights of its corners, counter-clockwise as seen from the front.
struct CutTriangle {
    f32 column[3];
    f32 height[3];
};

// The cut face of a stack as its heights are.
CutFace cut_face_create(const Stack *stack);

// The same in parts, for those who settle whole films: the films of a stack, without their heights,
CutFace cut_face_begin(const Stack *stack);

// the heights of one, the first row of what was settled,
void cut_face_take(CutFace *face, i32 film, const SettledFilm *settled);

// in pictures without slits: air in a single column that is closed on all sides goes to the film above it.
// Beside a wall a step goes by the height of the neighbouring column and leaves such air where nothing is
// hollow; in a picture that is a dark line beside every filled trench. The film gets that much area more.
void cut_face_close_slits(CutFace *face);

// and the pieces, once all have their heights.
void cut_face_divide(CutFace *face);

// The triangles of a piece, whose sides get a corner wherever a piece beside it has one.
//   triangles   a growable array, which they are appended to
void cut_face_triangles(const CutFace *face, i32 piece, Owned<CutTriangle[]> *triangles, i32 *count,
                        i32 *capacity);
