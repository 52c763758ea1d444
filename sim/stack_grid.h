// stack_grid.h: the grid of a run, and the tables that are made over it.
#pragma once
#include "process/stack.h"

// The largest neighbour table that set-up makes: far above what any ordinary section needs
// (36 million at the finest grid and the widest margin), below what exhausts a machine.
inline constexpr i32 GRID_NEIGHBOR_LIMIT = 300000000;

// Computes spacing, grid_m, depth (rounded up to whole grid points) and margin_cells from the
// settings. False, with the reason on the console, when they give no usable grid; that includes
// numbers that are not finite.
bool stack_grid_lay(Stack *stack);

// Makes the neighbour table, the zeroed cells, the surface lines and the empty layer list.
void stack_grid_tables(Stack *stack);
