// fine_front.h: the cut face of fine pictures: between two columns of the grid the films lie side by side
// without a crack and without overlap. A film that is there at both columns goes straight from one to the
// other. Films that are there at one column only, and meet others there at the next, end in a straight
// vertical edge; in the open, where nothing takes their place, they run out to the next column, as their
// surfaces do. Micrometres.
#pragma once
#include "render/fine_section.h"

// What a film fills between the columns n and n + 1.
struct FrontPiece {
    i32 film;  // of the section
    i32 n;
    f32 left_low, left_high;    // at column n
    f32 right_low, right_high;  // at column n + 1
};

struct FineFront {
    Owned<FrontPiece[]> pieces;  // by columns, then from the bottom up
    i32 piece_count, piece_capacity;
    Owned<i32[]> first;  // N + 1: the first piece at or behind each column
    i32 grid_n;
};

// A triangle of the cut face: columns and heights of its corners, counter-clockwise as seen from the front.
struct FrontTriangle {
    i32 n[3];
    f32 height[3];
};

// The pieces of the cut face. Needs no context.
FineFront fine_front_create(const FineSection *section);

// The triangles of a piece, whose sides get a corner wherever a piece of the next columns has one.
//   triangles   a growable array, which they are appended to
void fine_front_triangles(const FineFront *front, i32 piece, Owned<FrontTriangle[]> *triangles, i32 *count,
                          i32 *capacity);
