// mesh.h: triangle meshes of layers. x = column * spacing, y = row * spacing,
// z = height, micrometres.
#pragma once
#include "sim/layer.h"

struct MeshVertex {
    f32 position[3];
    f32 normal[3];  // not normalised; of a bottom vertex zeros, or (0, 0, MESH_WALL_MARK)
};

// Stands in the third place of a bottom vertex's normal where the underside is not level.
inline constexpr f32 MESH_WALL_MARK = -1.0F;

// A mesh in memory; both arrays owned.
struct LayerMesh {
    MeshVertex *vertices;
    i64 vertex_count;
    u32 *indices;  // three per triangle
    i64 index_count;
};

// The triangles of a layer (micrometres) where it is present: bottom surface, top surface and the cut face
// along the first grid row. Only vertices in use, in order of first use. Needs no context.
LayerMesh layer_mesh_create(const Layer *layer);
void layer_mesh_free(LayerMesh *mesh);  // frees both arrays and leaves an empty mesh

// Makes the mesh and loads it into the layer's buffers; sets index_count. Needs a current context.
void layer_build_mesh(Layer *layer);
