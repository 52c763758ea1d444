// plain_mesh.h: the mesh of a layer made the long way round, for comparison.
#pragma once
#include <vector>
#include "render/mesh.h"

struct PlainMesh {
    std::vector<MeshVertex> vertices;
    std::vector<u32> indices;
};

// All vertices of the grid first, then the triangles, then the vertices in use numbered anew by their
// first use. The grid must have fewer than 2^30 points.
PlainMesh plain_mesh(const Layer *layer);
