// drawn_mesh.h: the meshes that pictures are drawn of: those of mesh.h without what no picture shows, and
// with few triangles where the top is level. No pixel depends on the difference.
#pragma once
#include "process/stack.h"
#include "render/mesh.h"

// The mesh of the layer in a slot among the layers around it. Needs no context.
LayerMesh drawn_mesh_create(const Stack *stack, i32 slot);

// Brings the meshes in the layers' buffers up to date with the heights of the layers whose `changed` is set;
// sets index_count, under_count and last_wins where one was made. The triangles of layers that only layers
// which hide others lie under are loaded in reverse order, for drawing top down (scene.cpp). Meshes that
// would come out the same are left as they are. The flags stay set. Needs a current context.
void stack_build_meshes(Stack *stack);
