// drawn_mesh.h: the meshes that pictures are drawn of: those of mesh.h without what no picture shows, and
// with few triangles where the top is level. No pixel depends on the difference.
#pragma once
#include "process/stack.h"
#include "render/mesh.h"

// The mesh of the layer in a slot among the layers around it. Needs no context. Freed with layer_mesh_free.
LayerMesh drawn_mesh_create(const Stack *stack, i32 slot);

// Makes the meshes of all layers and loads them into the layers' buffers; sets their index_count. Needs a
// current context.
void stack_build_meshes(Stack *stack);
