// test_stack.h: small stacks and layouts made in memory, and steps to run on them, for the tests of the
// simulation and of what stands on it. Link quarn_test_stack. Lengths are micrometres.
#pragma once
#include <initializer_list>
#include <memory>
#include "gds/gds_database.h"
#include "gds/polygon_list.h"
#include "process/stack.h"
#include "sim/layer.h"
#include "sim/stack_setup.h"

// A stack of that grid with its neighbour table, cells at height 0, no layer, no polygon.
Owned<Stack> test_stack(i32 grid_n, i32 grid_m, f32 spacing, i32 margin_cells = 0);

// A flat layer in the next slot, owned by the stack; the cells stay. A bottom equal to the top is an absent
// layer.
Layer *test_layer(Stack *stack, const char *material, f32 bottom, f32 top);

// Frees the layer of a slot, which stays empty.
void test_layer_remove(Stack *stack, i32 slot);

// Sets every cell.
void test_surface(Stack *stack, f32 height, i32 top_layer);

// Index of a grid point.
i64 test_point(const Stack *stack, i32 n, i32 m);

// A rectangle of one layout layer, from the corner of the padded grid.
void test_rectangle(Stack *stack, u16 layer, f32 x_min, f32 y_min, f32 x_max, f32 y_max, u16 datatype = 0);

// A step whose texts are static and whose targets die with it.
struct TestStep {
    ProcessStep step;
    char *target_items[4];
};
using OwnedStep = std::unique_ptr<TestStep>;

// A step of that kind with dop 1, taper 90 and alpha 1.
OwnedStep test_step(i32 kind, const char *title = nullptr, const char *material = nullptr);

// The targets of an etch or a release, at most four.
void test_targets(TestStep *step, std::initializer_list<const char *> names);

// An empty layout of 1 nm units.
Owned<GdsDatabase> test_layout();

// Adds a cell at the end of the layout; null for one without a name. Lives until the next one is added.
GdsCell *test_cell(GdsDatabase *layout, const char *name);

// A rectangle in a cell of the layout that test_cell last added one to, database units; grows the cell's
// extent.
void test_cell_rectangle(GdsCell *cell, u16 layer, Box box, u16 datatype = 0);
