// layer_gl.h: the OpenGL objects of layers and of the surface lines. They are made and deleted only
// while this thread holds a context; without one the simulation runs all the same and every
// name stays 0.
#pragma once
#include "process/stack.h"
#include "sim/layer.h"

// Empty vertex and index buffers and the 24-byte vertex of a layer's mesh.
void layer_gl_create(Layer *layer);

// Deletes them; the names are not reset.
void layer_gl_delete(Layer *layer);

// An empty vertex buffer and the 28-byte vertex of the surface lines.
void lines_gl_create(Stack *stack);

// Deletes them; the names are not reset.
void lines_gl_delete(Stack *stack);
