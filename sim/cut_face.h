// cut_face.h: the cut face of a section, its first row, as fine pictures and profiles show it: between two
// columns of the grid the films lie side by side without a crack and without overlap. A film that is there at
// both columns goes straight from one to the other. One that is there at one of them only ends half-way
// between them, in a straight vertical edge, so that each film has exactly the area of its heights; what it
// lies on or under may have a step there. Where that would tear a film, it runs out to a point at the next
// column instead, which is the same area. Air is seen where the heights have it. Micrometres.
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
    f32 rounding;              // see film_rounding
    Owned<i32[]> slots;        // of the films that are shown, bottom first
    Owned<f32[]> low, high;    // N for each film: its bottom and its top
    Owned<CutPiece[]> pieces;  // by their left side, then from the bottom up
    i32 piece_count, piece_capacity;
    Owned<i32[]> first;  // N + 1: the first piece at or behind each column
};

// Heights of a border between two columns: at the left one, half-way as seen from the left and as seen from
// the right, and at the right one. Half-way they differ where the border has a step.
struct CutBorder {
    f64 left, before, behind, right;
};

// A film between two columns. Its halves are pieces of their own where it has a step, or any film beside it.
struct CutFilm {
    i32 film;
    bool in_left, in_right;  // the halves that it lies in
    bool is_open;            // that is seen from outside: it ends half-way, or its top has a step there
    CutBorder low, high;
};

// What lies between two columns, or two other neighbouring points of the grid.
struct CutColumns {
    const f32 *low, *high;    // of each film: at the two points; not owned
    i64 stride, left, right;  // from film to film; of the two points
    i32 film_count;
    f32 rounding;
    Owned<CutFilm[]> films;  // from the bottom up
    i32 count, capacity;
    bool is_halved;
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

// The edges of films all over the grid, seen as the cut face sees those of its row.
struct CutEdges {
    const Stack *stack;  // not owned
    const CutFace *face;
    Owned<f32[]> low, high;  // of each film at two points
    CutColumns columns;
};

// The stack and the face, whose films are looked for, must stay.
CutEdges cut_edges_create(const Stack *stack, const CutFace *face);

enum CutEdgeKind {
    CUT_EDGE_OTHER,  // it goes straight on, runs out to a point, or ends between other films
    CUT_EDGE_END,    // it lies open and ends half-way, in a vertical edge
    CUT_EDGE_STEP,   // its top has a step half-way, where a film on it ends
};

// A film between two neighbouring points.
struct CutEdge {
    CutEdgeKind kind;
    f32 low, high;  // half-way, as seen from the first point
    f32 behind;     // its top as seen from the second one
};

// Looks at a film that is there at the first of two neighbouring points.
CutEdge cut_edges_find(CutEdges *edges, i32 film, i64 one, i64 two);
