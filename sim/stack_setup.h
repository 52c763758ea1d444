// stack_setup.h: make and free the record of one run.
#pragma once
#include "process/stack.h"
#include "sim/kernels/grid.h"

struct GdsDatabase;
struct SectionChoice;

// Height profiles that are drawn along the section, the first and the last on its edges.
inline constexpr i32 SURFACE_LINES = 10;

// A vertex of the surface lines: position, three unused numbers, size of the point's share.
struct LineVertex {
    f32 position[3];
    f32 unused[3];
    f32 shade;
};

// Reads the process file, lays the grid, extracts the polygons around the cut from the layout cell,
// and prepares neighbour table, surface lines and the empty layer list. Progress and faults go to
// the console. OpenGL objects are made only when this thread holds a context.
//   layout    may be null; that is reported once the process file is read
//   section   cut in the place of the one that the file names; null: the file's
// Returns the new stack, freed with stack_free, or null when the run cannot go on or an interrupt has come.
Stack *stack_create(const wchar_t *process_path, const GdsDatabase *layout,
                    const SectionChoice *section = nullptr);

// Frees everything that the stack owns, itself last; null is ignored.
void stack_free(Stack *stack);

template <>
struct Freed<Stack> {
    void operator()(Stack *stack) const { stack_free(stack); }
};
