// stack_setup.h: make and free the record of one run.
#pragma once
#include "process/stack.h"

struct GdsDatabase;

// One point of the grid: the surface of the whole stack.
struct GridCell {
    f32 height;     // micrometres; 0 is the level that the substrate starts from
    i32 top_layer;  // slot of the layer that forms the surface, see the algorithms for exceptions
};

// A grid neighbour: column and row offset, and distance in micrometres.
struct GridOffset {
    i32 dx, dy;
    f32 distance;
};

// A vertex of the surface lines: position, three unused numbers, size of the point's share.
struct LineVertex {
    f32 position[3];
    f32 unused[3];
    f32 shade;
};

// Reads the process file, lays the grid, extracts the polygons around the cut from the layout cell,
// and prepares neighbour table, surface lines and the empty layer list. Progress and faults go to
// the console. OpenGL objects are made only when this thread holds a context.
//   layout   may be null; that is reported once the process file is read
// Returns the new stack, freed with stack_free, or null when the run cannot go on or an interrupt has come.
Stack *stack_create(const wchar_t *process_path, const GdsDatabase *layout);

// Frees everything that the stack owns, itself last; null is ignored.
void stack_free(Stack *stack);

// Appends a layer, which the stack then owns, in the next slot.
void stack_append_layer(Stack *stack, Layer *layer);

// Recomputes every grid cell from the layers: the topmost layer that is present at the point or at
// one of its eight neighbours forms the surface, so that walls one grid point wide stay visible.
void stack_update_surface(Stack *stack);

// Sorts a neighbour table by distance, ascending; equal distances keep their order.
// After an interrupt the table is of no use.
void offsets_sort_by_distance(GridOffset *offsets, i32 count);
