// mesh.h: triangle meshes of layers. x = column * spacing, y = row * spacing,
// z = height, micrometres.
#pragma once
#include "platform/owned.h"
#include "sim/layer.h"

struct MeshVertex {
    f32 position[3];
    f32 normal[3];  // not normalised; of a bottom vertex zeros
};

// A mesh in memory.
struct LayerMesh {
    Owned<MeshVertex[]> vertices;
    i64 vertex_count = 0;
    Owned<u32[]> indices;  // three per triangle
    i64 index_count = 0;
    i64 under_count = -1;  // of them: of the underside, before all others; -1: mixed
};

// The triangles of a layer (micrometres) where it is present: bottom surface, top surface and the cut face
// along the first grid row. Only vertices in use, in order of first use. Needs no context.
LayerMesh layer_mesh_create(const Layer *layer);

// Loads a mesh into the layer's buffers, which stay bound; sets index_count. Needs a current context.
void layer_load_mesh(Layer *layer, const LayerMesh *mesh);

// Makes the mesh and loads it into the layer's buffers; sets index_count, under_count and last_wins.
// Needs a current context.
void layer_build_mesh(Layer *layer);
