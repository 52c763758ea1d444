// fine_builder.h: the mesh of one film of a fine picture while it grows: its vertices, with the light that
// falls on them, and its indices.
#pragma once
#include "render/fine_order.h"
#include "render/fine_section.h"
#include "render/mesh.h"

// Where fine pictures are seen from: in grid columns and micrometres, heights as they are, not as drawn.
struct FineEye {
    f32 column, y, z;
};

// What is known of an edge of the grid, for the triangles that share it: how a film goes on along it, and the
// vertices half-way that it has.
struct FineEdge {
    i32 film;  // -1 for none
    i64 one, two;
    CutEdge cut;
    u32 top, low,
        high;  // vertices of the top, and of the wall that stands there; all bits set before they are made
};

inline constexpr i64 FINE_EDGES_KEPT = 8192;  // a power of two: some rows of the films' ends

// The meshes of a section's films, one after the other from the bottom up.
struct FineMesher {
    const FineSection *section;
    FineEye eye;
    SettledFilm film;  // settled last
    FilmFloor floor;
    CutEdges edges;
    Owned<FineEdge[]> kept;  // FINE_EDGES_KEPT of them, the last ones looked at
    Owned<u32[]> top_numbers,
        bottom_numbers;  // N x M: vertices of grid points, all bits set before they are made
    i32 next;            // film
};

struct FineBuilder {
    FineMesher *mesher;
    const Stack *stack;
    i32 film;
    FineOrder *order;  // null for a solid film
    LayerMesh mesh;
    i64 vertex_capacity, index_capacity;  // at least 1
};

// Whether the film is there at a grid point.
bool fine_builder_there(const FineBuilder *builder, i64 point);

// The height that the light on a film's top goes by: that of the surface which is seen, so that nothing shows
// of borders between films which lie level with each other; where more than one is seen, that of the film.
f32 fine_builder_lit(const FineBuilder *builder, i64 point);

// The film between two neighbouring points, at the first of which it is there. Valid until the next call.
FineEdge *fine_builder_edge(FineBuilder *builder, i64 one, i64 two);

// The vertex of the film's top, or of its underside, at a grid point. Returns its number.
u32 fine_builder_top(FineBuilder *builder, i64 point);
u32 fine_builder_bottom(FineBuilder *builder, i64 point);

// A vertex of its own. Returns its number.
u32 fine_builder_vertex(FineBuilder *builder, const MeshVertex *vertex);

// A triangle of the mesh's own indices.
void fine_builder_indices(FineBuilder *builder, u32 a, u32 b, u32 c);
