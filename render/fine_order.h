// fine_order.h: the triangles of translucent films, from back to front. A grid seen from a place before it
// has such an order: the far rows come before the near ones, in a row the outer quads before the inner ones,
// and over one triangle of the grid the surfaces lie on each other without crossing, so that of those that
// face the eye the lower ones come first, and of those that turn away the upper ones. Each pixel then gets
// the light of every surface in its turn, without a search for depths in the shader, which may be the user's
// own (the order is that of painting height fields: Anderson, Hidden Line Elimination in Projected Grid
// Surfaces, 1982).
#pragma once
#include "platform/owned.h"

struct OrderedTriangle {
    i64 cell;        // rank of its triangle of the grid, far ones first; FINE_CELL_FRONT in the cut face
    i32 surface;     // 2 x film for its underside, 2 x film + 1 for its top
    bool is_turned;  // away from the eye
    bool is_shown;   // one that is not only parts what is behind it from what is before
    u32 vertices[3];
};

inline constexpr i64 FINE_CELL_FRONT = I64_MAX;

// A growable array; all zero is an empty one.
struct FineOrder {
    Owned<OrderedTriangle[]> triangles;
    i64 count, capacity;
};

// Triangles of one film to be drawn together.
struct FineBatch {
    i32 film;
    i64 first, count;  // indices
};

// What is drawn, one batch after the other.
struct FineBatches {
    Owned<u32[]> indices;
    i64 index_count;
    Owned<FineBatch[]> items;
    i32 count, capacity;
};

// The rank of triangle A (or B) of the quad at column n, row m, seen from before the grid at a column, which
// lies between its first and its last one.
i64 fine_order_cell(i64 grid_n, i64 grid_m, i64 n, i64 m, bool is_b, f32 eye_column);

void fine_order_append(FineOrder *order, const OrderedTriangle *triangle);

// Sorts the triangles and joins those of a film that follow each other. Where no surface turns away from the
// eye, whole films follow each other.
FineBatches fine_order_batches(FineOrder *order);
