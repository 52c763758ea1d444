// scene.h: small stacks made in memory, layouts and steps to run on them, and what the console
// said, for the tests of the simulation.
#pragma once
#include <initializer_list>
#include <memory>
#include <string>

#include "gds/gds_database.h"
#include "gds/polygon_list.h"
#include "process/stack.h"
#include "sim/layer.h"
#include "sim/stack_setup.h"

// Collects console text and diagnostics while it lives; one at a time.
struct TextCapture {
    TextCapture();
    ~TextCapture();
    TextCapture(const TextCapture &) = delete;
    TextCapture &operator=(const TextCapture &) = delete;
    std::string console() const;      // "\r\n" as it is; characters beyond 255 as '?'
    std::string diagnostics() const;  // a line feed after each line
};

struct StackDeleter {
    void operator()(Stack *stack) const { stack_free(stack); }
};
using StackPointer = std::unique_ptr<Stack, StackDeleter>;

struct LayoutDeleter {
    void operator()(GdsDatabase *layout) const { gds_free(layout); }
};
using LayoutPointer = std::unique_ptr<GdsDatabase, LayoutDeleter>;

// A stack of that grid with its neighbour table, cells at height 0, no layer, no polygon.
StackPointer scene_stack(i32 grid_n, i32 grid_m, f32 spacing, i32 margin_cells = 0);

// A flat layer in the next slot; the cells stay. A bottom equal to the top is an absent layer.
Layer *scene_layer(Stack *stack, const char *material, f32 bottom, f32 top);

// Sets every cell.
void scene_surface(Stack *stack, f32 height, i32 top_layer);

// Index of a grid point.
i64 scene_at(const Stack *stack, i32 n, i32 m);

// A rectangle of one layout layer, micrometres from the corner of the padded grid.
void scene_rectangle(Stack *stack, u16 layer, f32 x_min, f32 y_min, f32 x_max, f32 y_max);

// A step whose texts are static and whose targets die with it.
struct TestStep {
    ProcessStep step;
    char *target_items[4];
};

// A step of that kind with dop 1, taper 90 and alpha 1.
std::unique_ptr<TestStep> scene_step(i32 kind, const char *title = nullptr, const char *material = nullptr);
void scene_targets(TestStep *step, std::initializer_list<const char *> names);

// A layout of 1 nm units; cells are added at its end.
LayoutPointer scene_layout();
GdsCell *scene_cell(GdsDatabase *layout, const char *name);

// A rectangle in a cell, database units; grows the cell's extent.
void scene_cell_rectangle(GdsCell *cell, u16 layer, Box box);

// A new empty folder that is deleted, with what is in it, at the end.
struct TemporaryFolder {
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;
    std::string path;
};

// Writes a file byte for byte; reads a whole one ("" when it is not there).
void file_write(const std::string &path, const std::string &content);
// A text file, with bare line feeds.
std::string file_read(const std::string &path);

// The bits of a number, so that nan equals nan and 0 differs from -0.
u32 f32_bits(f32 value);
