#include "export/profile_hatch.h"

#include <algorithm>
#include <cassert>
#include <cmath>

// One or two sets of parallel lines: their direction as a step on the page, and how far apart they are in
// points.
struct HatchForm {
    HatchPoint step, other_step;  // the second is 0 where there is none
    f64 distance;
};

// clang-format off
static constexpr HatchForm FORMS[] = {
    {{1.0, -1.0}, {0.0, 0.0}, 7.0},
    {{1.0, 1.0}, {0.0, 0.0}, 7.0},
    {{1.0, -1.0}, {1.0, 1.0}, 9.0},
    {{0.0, 1.0}, {0.0, 0.0}, 6.0},
    {{2.0, -1.0}, {0.0, 0.0}, 4.0},
    {{2.0, 1.0}, {0.0, 0.0}, 4.0},
    {{0.0, 1.0}, {1.0, 0.0}, 8.0},
    {{1.0, -2.0}, {0.0, 0.0}, 4.0},
    {{1.0, 0.0}, {0.0, 0.0}, 5.0},
};
// clang-format on
static constexpr i32 FORM_COUNT = static_cast<i32>(sizeof(FORMS) / sizeof(FORMS[0]));

// Where a hatch line and a border meet.
struct HatchCrossing {
    i64 line;
    f64 along;
};

struct HatchCrossings {
    Owned<HatchCrossing[]> items;
    i32 count, capacity;
};

// A border meets the lines from its lower end on to below its upper end, so that a corner on a line counts
// once, or not at all.
static void cross_border(HatchPoint a, HatchPoint b, HatchPoint unit, f64 distance,
                         HatchCrossings *crossings) {
    const auto across = [&](HatchPoint p) { return (p.y * unit.x - p.x * unit.y) / distance; };
    const auto along = [&](HatchPoint p) { return p.x * unit.x + p.y * unit.y; };
    const f64 first = across(a);
    const f64 second = across(b);
    const i64 begin = truncate_i64(std::ceil(std::min(first, second)));
    const i64 end = truncate_i64(std::ceil(std::max(first, second)));
    for (i64 line = begin; line < end; ++line) {
        const f64 share = (static_cast<f64>(line) - first) / (second - first);
        array_append(&crossings->items, &crossings->count, &crossings->capacity,
                     {line, along(a) + share * (along(b) - along(a))});
    }
}

static void add_set(HatchPoint step, f64 distance, const HatchRing *rings, i32 ring_count,
                    HatchLines *lines) {
    const f64 length = std::hypot(step.x, step.y);
    const HatchPoint unit = {step.x / length, step.y / length};
    HatchCrossings crossings = {};
    for (i32 ring = 0; ring < ring_count; ++ring) {
        const HatchRing *r = &rings[ring];
        for (i32 i = 0; i < r->count; ++i) {
            cross_border(r->points[i], r->points[i + 1 < r->count ? i + 1 : 0], unit, distance, &crossings);
        }
    }
    std::sort(crossings.items.get(), crossings.items.get() + crossings.count,
              [](const HatchCrossing &a, const HatchCrossing &b) {
                  return a.line != b.line ? a.line < b.line : a.along < b.along;
              });
    const auto point = [&](const HatchCrossing &crossing) {
        const f64 across = static_cast<f64>(crossing.line) * distance;
        return HatchPoint{crossing.along * unit.x - across * unit.y,
                          crossing.along * unit.y + across * unit.x};
    };
    for (i32 i = 0; i + 1 < crossings.count; i += 2) {
        assert(crossings.items[i].line == crossings.items[i + 1].line);
        array_append(&lines->items, &lines->count, &lines->capacity,
                     {point(crossings.items[i]), point(crossings.items[i + 1])});
    }
}

void profile_hatch_add(i32 material, const HatchRing *rings, i32 ring_count, HatchLines *lines) {
    assert(material >= 0 && (rings != nullptr || ring_count == 0) && lines != nullptr);
    if (material == 0) {
        return;
    }
    const HatchForm *form = &FORMS[(material - 1) % FORM_COUNT];
    add_set(form->step, form->distance, rings, ring_count, lines);
    if (form->other_step.x != 0.0 || form->other_step.y != 0.0) {
        add_set(form->other_step, form->distance, rings, ring_count, lines);
    }
}
