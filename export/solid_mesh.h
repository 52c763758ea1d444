// solid_mesh.h: a film (solid_film.h) as a closed surface of triangles. Every edge belongs to exactly two of
// them, which run through it in opposite directions, as numbers of vertices and as places in space alike;
// seen from outside corners go counter-clockwise; no triangle is without area.
//
// The top and the underside have the triangles of the grid where the film is there at one of their corners.
// They meet where the film runs out; at the four sides of the grid walls join them. Only where a film runs
// out from both sides to the same edge of two triangles would four of them meet: there each side ends a
// thousandth of the way short of the edge, in a slit with walls, which takes a millionth of the volume of
// these triangles. Bodies of a film may touch in single points.
//
// Level parts of the top and the underside are joined to blocks (sim/level_blocks.h), and the walls to
// rectangles where top and underside both are level along them.
#pragma once
#include "export/solid_film.h"

// x across the section, y along it, z up. Heights are micrometres as the film has them. Across and along, f32
// micrometres would put the lines of the grid unevenly, by up to a ten-thousandth of the spacing, and films
// of a few columns would be too thick or too thin by as much. So x and y are multiples of a step with few
// digits, which are exact, and micrometres when they are multiplied by the mesh's `stretch`.
struct SolidVertex {
    f32 x, y, z;
};

struct SolidMesh {
    Owned<SolidVertex[]> vertices;  // all in use
    i64 vertex_count = 0;
    i64 vertex_capacity = 0;
    Owned<u32[]> indices;  // three per triangle
    i64 index_count = 0;
    i64 index_capacity = 0;
    SolidVertex low = {}, high = {};  // the corners of the box around it; zeros where there is no triangle
    f64 stretch = 1.0;                // 1 but for a ten-thousandth or so: at most 2^-13
};

// Makes the mesh of a film; without triangles when the film is nowhere, when the grid has a single row or
// column, and when the section is larger than f32 can tell.
//   mesh   what it held goes; its room is used again
void solid_mesh_make(const SolidFilm *film, SolidMesh *mesh);

// A vertex in micrometres, each rounded to f32.
SolidVertex solid_place(const SolidMesh *mesh, SolidVertex vertex);

// What the surface encloses, cubic micrometres.
f64 solid_mesh_volume(const SolidMesh *mesh);
