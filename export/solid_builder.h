// solid_builder.h: a mesh of solid_mesh.h in the making, for the files that make its parts.
#pragma once
#include "export/solid_mesh.h"
#include "sim/level_blocks.h"

enum SolidMark : u8 {
    SOLID_LEVEL = 1,   // of a quad: level, and the film is there at its four corners
    SOLID_MERGED = 2,  // of a quad: inside a block
    SOLID_CORNER = 4,  // of a point: kept by the blocks around it
};

// The top or the underside of a film.
struct SolidSurface {
    const f32 *heights;    // of the film; not owned
    LevelMarks blocks;     // of SolidMark
    Owned<u8[]> marks;     // what they mark
    Owned<u32[]> numbers;  // of the vertices, by points; SOLID_UNUSED until they are there
};

inline constexpr u32 SOLID_UNUSED = 0xFFFFFFFFU;

struct SolidBuilder {
    const SolidFilm *film;
    SolidMesh *mesh;
    f32 step;  // from one point of the grid to the next in the mesh
    SolidSurface top, underside;
};

u32 solid_append_vertex(SolidBuilder *builder, SolidVertex vertex);
void solid_append_triangle(SolidBuilder *builder, u32 a, u32 b, u32 c);

// The numbers of the vertices at a point, which are the same where the film has no thickness.
u32 solid_top_vertex(SolidBuilder *builder, i64 point);
u32 solid_underside_vertex(SolidBuilder *builder, i64 point);

// Marks the points on the sides of the grid where a wall has a corner whatever the blocks are. To be called
// before blocks are looked for.
void solid_sides_mark(SolidBuilder *builder);

// Appends the walls along the four sides, between the blocks as they were found.
void solid_sides_append(SolidBuilder *builder);
