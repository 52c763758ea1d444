#include "sim/section_hints.h"

#include <algorithm>
#include <cassert>

#include "gds/gds_hierarchy.h"
#include "log/near_name.h"
#include "process/hints.h"
#include "sim/mask_hints.h"

// How much of the section has to lie in the cell. Sections that show some bare ground beside a structure are
// common; so are those with more of it behind, since the depth follows the width.
static constexpr f64 WIDTH_LEAST = 0.75;
static constexpr f64 DEPTH_LEAST = 0.45;

static void hint_cell_name(const Stack *stack, const GdsDatabase *layout) {
    NearName near = {stack->cell_name, nullptr, 0};
    for (i32 i = 0; i < layout->cell_count; ++i) {
        if (layout->cells[i].name != nullptr) {
            near_name_try(&near, nstring_text(layout->cells[i].name));
        }
    }
    if (near.best != nullptr) {
        hint_write(stack->cell_line, L"there is no cell \"%ls\": did you mean \"%ls\"?",
                   shown_text(stack->cell_name).text, shown_text(near.best).text);
    }
}

// A range along one axis, micrometres.
struct Span {
    f64 low, high;
};

// The part of `inner` that lies in `outer`, 0 to 1.
static f64 part_within(Span inner, Span outer) {
    const f64 common = std::min(inner.high, outer.high) - std::max(inner.low, outer.low);
    return common / (inner.high - inner.low);
}

// `rounding` is what the end of `a` may have been raised by.
static bool lies_outside(Span a, Span b, f64 rounding) {
    return a.high - rounding <= b.low || a.low >= b.high;
}

// True when a section of the cell can have no mask wherever it lies.
static bool hint_empty(const Stack *stack, const GdsDatabase *layout, GdsCell *cell) {
    const Box box = gds_cell_bbox(cell, GDS_PLACEMENT_IDENTITY, 0);
    const bool is_point = box.x_min == box.x_max && box.y_min == box.y_max;
    const bool is_empty = is_point && mask_cell_is_empty(layout, cell);
    if (is_empty) {
        hint_write(stack->cell_line, L"cell \"%ls\" has no polygons, of which masks could be made",
                   shown_text(stack->cell_name).text);
    }
    return is_empty;
}

// False when the section lies wholly outside, so that none of its masks can have a polygon.
static bool hint_place(const Stack *stack, const GdsDatabase *layout, GdsCell *cell) {
    const Box box = gds_cell_bbox(cell, GDS_PLACEMENT_IDENTITY, 0);
    const Span cell_x = {box.x_min * layout->unit, box.x_max * layout->unit};
    const Span cell_y = {box.y_min * layout->unit, box.y_max * layout->unit};
    auto left = static_cast<f64>(stack->origin_x);
    auto lower = static_cast<f64>(stack->origin_y);
    const Span x = {left, left + static_cast<f64>(stack->width)};
    const Span y = {lower, lower + static_cast<f64>(stack->depth)};
    const bool outside =
        lies_outside(x, cell_x, 0.0) || lies_outside(y, cell_y, static_cast<f64>(stack->spacing));
    const bool beyond = part_within(x, cell_x) < WIDTH_LEAST || part_within(y, cell_y) < DEPTH_LEAST;
    if (outside || beyond) {
        hint_write(
            stack->location_line,
            L"the section (x %g to %g, y %g to %g um) %ls cell \"%ls\" (x %g to %g, y %g to %g um): compare "
            L"-x, -y, -dx and -dy with it",
            x.low, x.high, y.low, y.high, outside ? L"lies outside" : L"reaches far beyond",
            shown_text(stack->cell_name).text, cell_x.low, cell_x.high, cell_y.low, cell_y.high);
    }
    return !outside;
}

void section_hints(const Stack *stack, const GdsDatabase *layout, GdsCell *cell, const wchar_t *path) {
    assert(stack->cell_name != nullptr && stack->polygons != nullptr && layout != nullptr);
    hints_start(path);
    if (cell == nullptr) {
        hint_cell_name(stack, layout);
    } else {
        const bool inside = !hint_empty(stack, layout, cell) && hint_place(stack, layout, cell);
        mask_hints(stack, layout, cell, inside);
    }
    hints_end();
}
