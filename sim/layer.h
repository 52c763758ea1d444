// layer.h: one material layer: a bottom and a top height per grid point, micrometres.
// Heights are indexed m * N + n with column n across and row m along the section.
#pragma once
#include "platform/owned.h"

struct Stack;

// What the mesh that a layer is drawn of was made from besides the layer itself. The renderer keeps it, so
// that it need not make a mesh anew that would come out the same.
struct MeshSource {
    i64 made;         // number of the picture that the mesh was made for; 0 before the first
    i32 first, last;  // slots of the layers that were looked at
    i32 live;         // how many of these slots held a layer
};

struct Layer {
    f32 *top;
    f32 *bottom;          // where both are equal the material is absent
    char *material_name;  // owned; SUBSTRATE_MATERIAL, RESIST_MATERIAL or one of the file
    char *legend_name;    // owned
    f32 color[4];         // red, green, blue, alpha, 0..1
    i32 changed;          // 1 while the layer's mesh is stale
    u32 vbo, ebo, vao;    // OpenGL names of the mesh; 0 without a context
    i32 index_count;      // of the mesh
    i32 last_wins;        // 1: of the mesh's triangles at equal depth the last one is seen; 0: the first one
    MeshSource mesh_source;
    i64 heights_made;  // number of the picture that first showed these heights; 0 before that
    i32 hides;         // whether the layer can hide others in a picture, since then
    u32 grid_n, grid_m;
    f32 spacing;
};

// A new layer of grid_n columns and grid_m rows, `spacing` micrometres apart, with uninitialised heights,
// `changed` set, and OpenGL objects when this thread holds a context. Freed with layer_free.
Layer *layer_create(i32 grid_n, i32 grid_m, f32 spacing);

// Frees the layer with its OpenGL objects; null is ignored.
void layer_free(Layer *layer);

template <>
struct Freed<Layer> {
    void operator()(Layer *layer) const { layer_free(layer); }
};

// For asserts: whether the layer lies over the grid of the stack.
bool layer_fits(const Layer *layer, const Stack *stack);

// Whether the thickness is exactly 0 at every grid point (a nan thickness counts as present).
bool layer_is_empty(const Layer *layer);

// The thickness at the middle of the cut, the middle column of the first row, as users are told it.
f32 layer_middle_thickness(const Layer *layer);
