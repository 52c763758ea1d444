// solid_check.h: what every solid has to be, and a mesh of a film without any merging as a twin.
#pragma once
#include <string>
#include <vector>
#include "export/solid_mesh.h"

// A triangle soup, as files without indices have it.
struct SolidSoup {
    std::vector<SolidVertex> corners;  // three per triangle
};

// In micrometres, rounded to f32.
SolidSoup solid_soup(const SolidMesh *mesh);

// What is wrong with a surface that should be closed: an edge without exactly two faces in opposite
// directions, or a triangle without area. "" when nothing is. By places in space.
std::string solid_soup_fault(const SolidSoup &soup);

// The same by rounded places, by exact ones and by numbers; vertices that no triangle uses are a fault too.
std::string solid_mesh_fault(const SolidMesh *mesh);

// The signed volume of a soup, and the area of what faces up, seen from above.
f64 solid_soup_volume(const SolidSoup &soup);
f64 solid_soup_plan(const SolidSoup &soup);

// The volume of the heights where a film is there, linear over the triangles of the grid.
f64 solid_heights_volume(const Layer *layer);

// A film as it is, triangle by triangle: no blocks, no slits. Not closed where a film touches itself.
SolidSoup plain_solid(const SolidFilm *film);
