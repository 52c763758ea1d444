#include "scene.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "log/log.h"
#include "platform/memory.h"
#include "sim/kernels/disc.h"
#include "sim/kernels/offsets.h"
#include "sim/stack_layers.h"

static std::wstring console_text;
static std::wstring diagnostic_text;

static void console_keep(const wchar_t *text) {
    console_text += text;
}

static void console_forget() {
    console_text.clear();
}

static void diagnostic_keep(const wchar_t *line) {
    diagnostic_text += line;
    diagnostic_text += L"\n";
}

static std::string narrow(const std::wstring &wide) {
    std::string text;
    for (const wchar_t unit : wide) {
        text += static_cast<u32>(unit) < 256 ? static_cast<char>(unit) : '?';
    }
    return text;
}

TextCapture::TextCapture() {
    console_text.clear();
    diagnostic_text.clear();
    console_set_sink(console_keep, console_forget);
    diagnostic_set_sink(diagnostic_keep);
}

TextCapture::~TextCapture() {
    console_set_sink(nullptr, nullptr);
    diagnostic_set_sink(nullptr);
}

std::string TextCapture::console() const {
    return narrow(console_text);
}

std::string TextCapture::diagnostics() const {
    return narrow(diagnostic_text);
}

static char *text_new(const char *text) {
    const size_t bytes = std::strlen(text) + 1;
    char *copy = memory_new_array<char>(static_cast<i64>(bytes));
    std::memcpy(copy, text, bytes);
    return copy;
}

StackPointer scene_stack(i32 grid_n, i32 grid_m, f32 spacing, i32 margin_cells) {
    Stack *stack = memory_new_zeroed<Stack>();
    stack->grid_n = grid_n;
    stack->grid_m = grid_m;
    stack->margin_cells = margin_cells;
    stack->spacing = spacing;
    stack->width = static_cast<f32>(grid_n) * spacing;
    stack->depth = static_cast<f32>(grid_m) * spacing;
    stack->cells = memory_new_zeroed<GridCell>(static_cast<i64>(grid_n) * grid_m);
    stack->offsets =
        offsets_create(grid_n + 2 * margin_cells, grid_m + 2 * margin_cells, spacing, &stack->offset_count);
    offsets_sort_by_distance(stack->offsets, stack->offset_count);
    stack->polygons = polygon_list_create();
    return StackPointer(stack);
}

Layer *scene_layer(Stack *stack, const char *material, f32 bottom, f32 top) {
    Layer *layer = layer_create(stack->grid_n, stack->grid_m, stack->spacing);
    layer->material_name = text_new(material);
    layer->legend_name = text_new(material);
    layer->changed = 0;
    const i64 points = static_cast<i64>(stack->grid_n) * stack->grid_m;
    std::fill(layer->bottom, layer->bottom + points, bottom);
    std::fill(layer->top, layer->top + points, top);
    stack_append_layer(stack, layer);
    return layer;
}

void scene_surface(Stack *stack, f32 height, i32 top_layer) {
    const i64 points = static_cast<i64>(stack->grid_n) * stack->grid_m;
    std::fill(stack->cells, stack->cells + points, GridCell{height, top_layer});
}

i64 scene_at(const Stack *stack, i32 n, i32 m) {
    return static_cast<i64>(m) * stack->grid_n + n;
}

void scene_rectangle(Stack *stack, u16 layer, f32 x_min, f32 y_min, f32 x_max, f32 y_max) {
    FlatPolygon polygon = {};
    polygon.point_count = 5;
    polygon.points = memory_new_array<FlatPoint>(5);
    const FlatPoint corners[5] = {
        {x_min, y_min}, {x_min, y_max}, {x_max, y_max}, {x_max, y_min}, {x_min, y_min}};
    std::copy(corners, corners + 5, polygon.points);
    polygon.layer = layer;
    polygon.x_min = x_min;
    polygon.y_min = y_min;
    polygon.x_max = x_max;
    polygon.y_max = y_max;
    PolygonList *list = stack->polygons;
    array_append(&list->items, &list->count, &list->capacity, polygon);
}

std::unique_ptr<TestStep> scene_step(i32 kind, const char *title, const char *material) {
    auto made = std::make_unique<TestStep>();
    *made = {};
    made->step.kind = kind;
    made->step.title = const_cast<char *>(title);
    made->step.material = const_cast<char *>(material);
    made->step.label = const_cast<char *>(material);
    made->step.dop = 1.0F;
    made->step.taper = 90.0F;
    made->step.alpha = 1.0F;
    return made;
}

void scene_targets(TestStep *step, std::initializer_list<const char *> names) {
    i32 count = 0;
    for (const char *name : names) {
        step->target_items[count++] = const_cast<char *>(name);
    }
    step->step.target_materials = {step->target_items, count, 4};
}

LayoutPointer scene_layout() {
    GdsDatabase *layout = memory_new_zeroed<GdsDatabase>();
    layout->unit = 0.001;
    return LayoutPointer(layout);
}

GdsCell *scene_cell(GdsDatabase *layout, const char *name) {
    GdsCell cell = {};
    cell.name = name == nullptr ? nullptr : string_copy(name);
    cell.bbox_valid = 1;
    array_append(&layout->cells, &layout->cell_count, &layout->cell_capacity, cell);
    return &layout->cells[layout->cell_count - 1];
}

void scene_cell_rectangle(GdsCell *cell, u16 layer, Box box) {
    GdsPolygon polygon = {};
    polygon.layer = layer;
    polygon.point_count = 5;
    polygon.points = memory_new_array<Point>(5);
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

TemporaryFolder::TemporaryFolder() {
    static std::atomic<int> number{0};
    std::filesystem::path folder;
    do {
        const std::string name = "quarn_sim_" + std::to_string(++number) + "_" + std::to_string(std::rand());
        folder = std::filesystem::temp_directory_path() / name;
    } while (!std::filesystem::create_directory(folder));
    path = folder.string();
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

void file_write(const std::string &path, const std::string &content) {
    std::ofstream file(path, std::ios::binary);
    file << content;
}

std::string file_read(const std::string &path) {
    const std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    std::string text = content.str();
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

u32 f32_bits(f32 value) {
    u32 bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}
