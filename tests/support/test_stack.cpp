#include "tests/support/test_stack.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "platform/memory.h"
#include "process/process_text.h"
#include "sim/kernels/offsets.h"
#include "sim/stack_layers.h"

Owned<Stack> test_stack(i32 grid_n, i32 grid_m, f32 spacing, i32 margin_cells) {
    Owned<Stack> stack(memory_new_zeroed<Stack>());
    stack->grid_n = grid_n;
    stack->grid_m = grid_m;
    stack->margin_cells = margin_cells;
    stack->spacing = spacing;
    stack->width = static_cast<f32>(grid_n) * spacing;
    stack->depth = static_cast<f32>(grid_m) * spacing;
    stack->cells = memory_new_zeroed<GridCell>(stack_point_count(stack.get()));
    stack->offsets =
        offsets_create(grid_n + 2 * margin_cells, grid_m + 2 * margin_cells, spacing, &stack->offset_count)
            .release();
    offsets_sort_by_distance(stack->offsets, stack->offset_count);
    stack->polygons = polygon_list_create();
    return stack;
}

Layer *test_layer(Stack *stack, const char *material, f32 bottom, f32 top) {
    Layer *layer = layer_create(stack->grid_n, stack->grid_m, stack->spacing);
    layer->material_name = process_text_copy(material).release();
    layer->legend_name = process_text_copy(material).release();
    layer->changed = 0;
    const i64 points = stack_point_count(stack);
    std::fill(layer->bottom, layer->bottom + points, bottom);
    std::fill(layer->top, layer->top + points, top);
    stack_append_layer(stack, layer);
    return layer;
}

void test_layer_remove(Stack *stack, i32 slot) {
    layer_free(stack->layers[slot]);
    stack->layers[slot] = nullptr;
}

void test_surface(Stack *stack, f32 height, i32 top_layer) {
    const i64 points = stack_point_count(stack);
    std::fill(stack->cells, stack->cells + points, GridCell{height, top_layer});
}

i64 test_point(const Stack *stack, i32 n, i32 m) {
    return static_cast<i64>(m) * stack->grid_n + n;
}

void test_rectangle(Stack *stack, u16 layer, f32 x_min, f32 y_min, f32 x_max, f32 y_max, u16 datatype) {
    FlatPolygon polygon = {};
    polygon.point_count = 5;
    polygon.points = memory_new_array<FlatPoint>(5);
    const FlatPoint corners[5] = {
        {x_min, y_min}, {x_min, y_max}, {x_max, y_max}, {x_max, y_min}, {x_min, y_min}};
    std::copy(corners, corners + 5, polygon.points);
    polygon.layer = layer;
    polygon.datatype = datatype;
    polygon.x_min = x_min;
    polygon.y_min = y_min;
    polygon.x_max = x_max;
    polygon.y_max = y_max;
    PolygonList *list = stack->polygons;
    array_append(&list->items, &list->count, &list->capacity, polygon);
}

OwnedStep test_step(i32 kind, const char *title, const char *material) {
    auto made = std::make_unique<TestStep>();
    made->step.kind = kind;
    made->step.title = const_cast<char *>(title);
    made->step.material = const_cast<char *>(material);
    made->step.label = const_cast<char *>(material);
    made->step.dop = 1.0F;
    made->step.taper = 90.0F;
    made->step.alpha = 1.0F;
    return made;
}

void test_targets(TestStep *step, std::initializer_list<const char *> names) {
    i32 count = 0;
    for (const char *name : names) {
        step->target_items[count++] = const_cast<char *>(name);
    }
    step->step.target_materials = {step->target_items, count, 4};
}

Owned<GdsDatabase> test_layout() {
    Owned<GdsDatabase> layout(memory_new_zeroed<GdsDatabase>());
    layout->unit = 0.001;
    return layout;
}

// A cell does not know its layout, in whose store the points of its polygons lie.
static GdsDatabase *layout_of_last_cell = nullptr;

GdsCell *test_cell(GdsDatabase *layout, const char *name) {
    layout_of_last_cell = layout;
    GdsCell cell = {};
    cell.name = name == nullptr ? nullptr : gds_add_name(layout, name, static_cast<i64>(std::strlen(name)));
    cell.bbox_valid = 1;
    array_append(&layout->cells, &layout->cell_count, &layout->cell_capacity, cell);
    return &layout->cells[layout->cell_count - 1];
}

void test_cell_rectangle(GdsCell *cell, u16 layer, Box box, u16 datatype) {
    GdsDatabase *layout = layout_of_last_cell;
    assert(layout != nullptr && cell >= layout->cells && cell < layout->cells + layout->cell_count);
    GdsPolygon polygon = {};
    polygon.layer = layer;
    polygon.datatype = datatype;
    polygon.point_count = 5;
    polygon.points = gds_add_points(layout, 5);
    const Point corners[5] = {{box.x_min, box.y_min},
                              {box.x_min, box.y_max},
                              {box.x_max, box.y_max},
                              {box.x_max, box.y_min},
                              {box.x_min, box.y_min}};
    std::copy(corners, corners + 5, polygon.points);
    polygon.bbox = box;
    array_append(&cell->polygons, &cell->polygon_count, &cell->polygon_capacity, polygon);
    cell->bbox = {std::min(cell->bbox.x_min, box.x_min), std::min(cell->bbox.y_min, box.y_min),
                  std::max(cell->bbox.x_max, box.x_max), std::max(cell->bbox.y_max, box.y_max)};
}
