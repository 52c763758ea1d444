#include "sim/stack_extract.h"

#include <cassert>
#include <cstring>

#include "gds/gds_flatten.h"
#include "gds/polygon_list.h"
#include "log/log.h"

static constexpr i32 RESULT_NO_CELL = 29;
static constexpr i32 RESULT_UNKNOWN = -1;

// One side of the window: its near end and, summed in f32, its far end.
static void window_side(f32 origin, f32 extent, f32 margin, f32 unit, i32 *low, i32 *high) {
    const f32 near_end = (origin - margin) / unit;
    *low = truncate_i32(static_cast<f64>(near_end));
    const f32 length = (extent + 2.0F * margin) / unit;
    const f32 far_end = length + static_cast<f32>(*low);
    *high = truncate_i32(static_cast<f64>(far_end));
}

Box extract_window(const Stack *stack, f32 unit) {
    assert(stack != nullptr);
    const f32 margin = static_cast<f32>(stack->margin_cells) * stack->spacing;
    Box window;
    window_side(stack->origin_x, stack->width, margin, unit, &window.x_min, &window.x_max);
    window_side(stack->origin_y, stack->depth, margin, unit, &window.y_min, &window.y_max);
    return window;
}

bool extract_report(i32 result, const char *cell_name) {
    switch (result) {
        case 0: return true;
        case RESULT_NO_CELL:
            console_printf(
                "ERROR: The cell name %s specified in the process file was not found in the GDS "
                "database\r\n\r\n",
                cell_name);
            return false;
        case GDS_FLATTEN_LIMIT_REACHED:
            console_append_narrow(
                "ERROR: Reached the maximum number of polygons. The layout is incomplete.\r\n\r\n\r\n");
            return false;
        case GDS_FLATTEN_INTERRUPTED: return false;
        default: console_append_narrow("ERROR: Unknown error extracting polygons\r\n\r\n"); return false;
    }
}

GdsCell *extract_cell_find(const GdsDatabase *layout, const char *name) {
    assert(layout != nullptr && name != nullptr);
    for (i32 i = 0; i < layout->cell_count; ++i) {
        const NString *cell_name = layout->cells[i].name;
        if (cell_name != nullptr && std::strcmp(nstring_text(cell_name), name) == 0) {
            return &layout->cells[i];
        }
    }
    return nullptr;
}

// Flattens the cell of the section into the stack's list. A result for extract_report.
static i32 extract_cell(Stack *stack, const GdsDatabase *layout) {
    if (layout == nullptr || stack->cell_name == nullptr || static_cast<f32>(layout->unit) == 0.0F) {
        return RESULT_UNKNOWN;
    }
    const f32 unit = static_cast<f32>(layout->unit);
    const f32 min_size = stack->spacing / unit;
    FlattenContext context = {};
    context.out = stack->polygons;
    context.window = extract_window(stack, unit);
    context.smallest = I64_MAX;
    context.min_size = truncate_i64(static_cast<f64>(min_size));
    context.scale = unit;
    GdsCell *cell = extract_cell_find(layout, stack->cell_name);
    if (cell == nullptr) {
        return RESULT_NO_CELL;
    }
    const GdsInstance instance = {cell, GDS_PLACEMENT_IDENTITY, 1};
    const i32 result = gds_flatten(&context, &instance);
    stack->polygons->smallest_size = static_cast<f32>(static_cast<f64>(context.smallest) * layout->unit);
    stack->polygons->skipped = context.skipped;
    return result;
}

static void report_section(const Stack *stack) {
    const PolygonList *polygons = stack->polygons;
    const f64 smallest_size = static_cast<f64>(polygons->smallest_size);
    console_printf("Found %d polygons with smallest size %.3f um\r\n\r\n", polygons->count, smallest_size);
    if (polygons->skipped != 0) {
        // Names the smallest size met rather than the threshold; kept so, since users compare the console
        // texts of runs.
        console_printf("WARNING: skipped %lld polygons < %.3f micron\r\n\r\n",
                       static_cast<long long>(polygons->skipped), smallest_size);
    }
    console_printf("GDS cell %s at (%.3f um, %.3f um)\r\n", stack->cell_name,
                   static_cast<f64>(stack->origin_x), static_cast<f64>(stack->origin_y));
    console_printf("Grid size: %d x %d\r\n", stack->grid_n, stack->grid_m);
    console_printf("Grid spacing: %.3f um\r\n", static_cast<f64>(stack->spacing));
    console_printf("GDS cell: %s\r\n\r\n", stack->cell_name);
}

bool stack_extract_polygons(Stack *stack, const GdsDatabase *layout) {
    assert(stack->polygons == nullptr && stack->spacing > 0.0F);
    console_append_narrow("Extracting polygons ...\r\n");
    stack->polygons = polygon_list_create();
    if (!extract_report(extract_cell(stack, layout), stack->cell_name)) {
        return false;
    }
    report_section(stack);
    return true;
}
