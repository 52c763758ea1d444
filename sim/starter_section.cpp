#include "sim/starter_section.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "gds/gds_flatten.h"
#include "gds/gds_placement.h"
#include "gds/polygon_list.h"
#include "platform/decimal_power.h"
#include "process/stack.h"
#include "sim/mask_hints.h"
#include "sim/stack_extract.h"
#include "sim/stack_grid.h"
#include "sim/stack_setup.h"

static constexpr f64 POLYGONS_TO_COUNT = 20000.0;  // about as many as are worth cutting out to be counted
static constexpr i64 POLYGONS_TO_SEE = 600;        // that can be told apart in a picture
static constexpr i64 POLYGONS_PER_PAIR = 4;        // or as many as this, so that many pairs stay together
static constexpr f64 WIDTH_LEAST = 10.0;           // database units
static constexpr i64 WORK_MOST =
    1000000;                              // of cutting one section out, so that all of them take some seconds
static constexpr i32 PROBE_HALVINGS = 2;  // of a section by which places are compared
static constexpr i32 PLACES = 5;          // along each side of a cell, where its middle shows little
static constexpr f64 DEPTH_OF_WIDTH = 0.4;
static constexpr f64 DEPTH_LEAST = 0.25;    // what a section has in any case
static constexpr f64 FIGURE_PART = 1000.0;  // figures are exact to this part of the width

// A section before it is written down, micrometres.
struct Place {
    f64 middle_x, middle_y;
    f64 width, height;  // of the cell's polygons
    i32 halvings_most;  // of a section there, until it is too narrow to show anything
};

// A candidate and what lies in it.
struct Candidate {
    StarterSection section;
    i64 seen, met;  // polygons as wide as the grid's spacing, and all
    bool possible;  // false when there are more than can be cut out, or no grid can be laid
};

// The width of the widest section whose depth lies in the cell's polygons too.
static f64 whole_width(const Place *place) {
    return std::min(place->width, place->height / DEPTH_LEAST);
}

// The polygons' box as far as the cell's extent reaches, beyond which a section would be taken for a mistake.
static Place place_of(const GdsDatabase *layout, const GdsCell *cell, const GdsPairList *polygons) {
    Box box = BOX_EMPTY;
    for (i32 i = 0; i < polygons->count; ++i) {
        box_grow(&box, polygons->items[i].box);
    }
    const Box extent = cell->bbox;
    box = {std::max(box.x_min, extent.x_min), std::max(box.y_min, extent.y_min),
           std::min(box.x_max, extent.x_max), std::min(box.y_max, extent.y_max)};
    const f64 unit = layout->unit;
    const f64 x_min = box.x_min * unit;
    const f64 y_min = box.y_min * unit;
    const f64 x_max = box.x_max * unit;
    const f64 y_max = box.y_max * unit;
    Place place = {(x_min + x_max) / 2, (y_min + y_max) / 2, x_max - x_min, y_max - y_min, 0};
    const f64 times = whole_width(&place) / (WIDTH_LEAST * unit);
    place.halvings_most = times > 1 ? static_cast<i32>(std::floor(std::log2(times))) : 0;
    return place;
}

// Down to three figures, so that nobody has to read more.
static f64 round_down(f64 value) {
    const f64 step = decimal_power(value) / 100.0;
    return std::floor(value / step + 1e-9) * step;
}

// The shortest text that is near enough.
static StarterFigure figure(f64 value, f64 near) {
    StarterFigure figure = {};
    if (std::fabs(value) < near) {
        std::snprintf(figure.text, sizeof(figure.text), "0");
        return figure;
    }
    const bool plain = std::fabs(value) < 1e9 && near >= 1e-9;
    for (i32 digits = plain ? 0 : 1; digits <= 12; ++digits) {
        std::snprintf(figure.text, sizeof(figure.text), plain ? "%.*f" : "%.*g", digits, value);
        if (std::fabs(std::strtod(figure.text, nullptr) - value) <= near) {
            break;
        }
    }
    return figure;
}

static StarterSection section_at(const Place *place, i32 halvings) {
    const f64 width = round_down(std::ldexp(whole_width(place), -halvings));
    const f64 depth =
        std::max(round_down(std::min(width * DEPTH_OF_WIDTH, place->height)), width * DEPTH_LEAST);
    const f64 near = width / FIGURE_PART;
    StarterSection section = {};
    section.width = figure(width, near);
    section.depth = figure(depth, near);
    section.x = figure(place->middle_x - width / 2, near);
    section.y = figure(place->middle_y - depth / 2, near);
    section.width_um = width;
    return section;
}

static f32 value_of(const StarterFigure *figure) {
    return std::strtof(figure->text, nullptr);
}

// The set-up of a run on the section, as far as its polygons need it. False when no grid can be laid.
static bool lay_grid(Stack *stack, const StarterSection *section) {
    stack->grid_n = STARTER_GRID;
    stack->origin_x = value_of(&section->x);
    stack->origin_y = value_of(&section->y);
    stack->width = value_of(&section->width);
    stack->depth = std::max(value_of(&section->depth), static_cast<f32>(DEPTH_LEAST) * stack->width);
    stack->max_bias = stack->max_resolution = F32_MIN_NORMAL;  // as without any -res above 0
    return stack->width > 0.0F && stack_grid_lay(stack);
}

// Twice the area of the triangle that two points make with a third one.
static f64 cross(FlatPoint a, FlatPoint b, FlatPoint origin) {
    return (static_cast<f64>(a.x) - static_cast<f64>(origin.x)) *
               (static_cast<f64>(b.y) - static_cast<f64>(origin.y)) -
           (static_cast<f64>(b.x) - static_cast<f64>(origin.x)) *
               (static_cast<f64>(a.y) - static_cast<f64>(origin.y));
}

// How much of its box a polygon fills, 0 to 1.
static f64 fill_of(const FlatPolygon *polygon) {
    f64 twice = 0.0;
    for (i32 i = 1; i < polygon->point_count; ++i) {
        twice += cross(polygon->points[i - 1], polygon->points[i], polygon->points[0]);
    }
    const f64 box = (static_cast<f64>(polygon->x_max) - static_cast<f64>(polygon->x_min)) *
                    (static_cast<f64>(polygon->y_max) - static_cast<f64>(polygon->y_min));
    return box > 0 ? std::min(std::fabs(twice) / 2.0 / box, 1.0) : 0.0;
}

// The part of the section that a polygon covers, if it fills its box evenly.
static f64 share_of(const Stack *stack, const FlatPolygon *polygon) {
    auto low = static_cast<f64>(static_cast<f32>(stack->margin_cells) * stack->spacing);
    auto width = static_cast<f64>(stack->width);
    auto depth = static_cast<f64>(stack->depth);
    const f64 x = std::min(static_cast<f64>(polygon->x_max), low + width) -
                  std::max(static_cast<f64>(polygon->x_min), low);
    const f64 y = std::min(static_cast<f64>(polygon->y_max), low + depth) -
                  std::max(static_cast<f64>(polygon->y_min), low);
    return x > 0 && y > 0 ? x * y / (width * depth) * fill_of(polygon) : 0.0;
}

static void add_pairs(StarterSection *section, const Stack *stack) {
    GdsPairList found = {};
    const Owned<GdsPairList> owner(&found);
    mask_count_section(stack, &found);
    for (i32 i = 0; i < found.count; ++i) {
        const StarterPair pair = {found.items[i].layer, found.items[i].datatype, found.items[i].count, 0.0};
        array_append(&section->pairs, &section->pair_count, &section->pair_capacity, pair, 16);
    }
    for (i32 i = 0; i < stack->polygons->count; ++i) {
        const FlatPolygon *polygon = &stack->polygons->items[i];
        const GdsPair *pair = gds_pairs_find(&found, polygon->layer, polygon->datatype);
        if (pair != nullptr) {
            section->pairs[pair - found.items].share += share_of(stack, polygon);
        }
    }
}

// Cuts a candidate out. False after an interrupt.
static bool candidate_try(const GdsDatabase *layout, GdsCell *cell, const Place *place, i32 halvings,
                          Candidate *candidate) {
    *candidate = Candidate{};
    candidate->section = section_at(place, halvings);
    const Owned<Stack> stack(memory_new_zeroed<Stack>());
    if (!lay_grid(stack.get(), &candidate->section)) {
        return true;
    }
    stack->polygons = polygon_list_create();
    const f32 unit = static_cast<f32>(layout->unit);
    const f32 min_size = stack->spacing / unit;
    FlattenContext context = {};
    context.out = stack->polygons;
    context.window = extract_window(stack.get(), unit);
    context.smallest = I64_MAX;
    context.min_size = truncate_i64(static_cast<f64>(min_size));
    context.scale = unit;
    context.most_work = WORK_MOST;
    const GdsInstance instance = {cell, GDS_PLACEMENT_IDENTITY, 1};
    const i32 result = gds_flatten(&context, &instance);
    if (result == 0) {
        add_pairs(&candidate->section, stack.get());
        for (i32 i = 0; i < candidate->section.pair_count; ++i) {
            candidate->seen += candidate->section.pairs[i].count;
        }
        candidate->met = gds_count_add(candidate->seen, context.skipped);
        candidate->possible = true;
    }
    return result != GDS_FLATTEN_INTERRUPTED;
}

// Keeps the candidate's section, or drops it.
static void keep(StarterSection *best, Candidate *candidate, bool better) {
    if (better) {
        starter_section_free(best);
        *best = candidate->section;
    } else {
        starter_section_free(&candidate->section);
    }
}

// The halvings after which about as many polygons as are worth counting are left, if they lie evenly.
static i32 first_halvings(const Place *place, const GdsPairList *polygons) {
    i64 total = 0;
    for (i32 i = 0; i < polygons->count; ++i) {
        total = gds_count_add(total, polygons->items[i].count);
    }
    const f64 whole = whole_width(place);
    f64 expected = static_cast<f64>(total) * whole / place->width * std::min(1.0, whole / place->height);
    i32 halvings = 0;
    for (; expected > POLYGONS_TO_COUNT && halvings < place->halvings_most; ++halvings) {
        expected /= 4.0;
    }
    return halvings;
}

// Where nothing lies about the middle: the smallest wider section in which something does.
static bool widen(const GdsDatabase *layout, GdsCell *cell, const Place *place, i32 halvings,
                  StarterSection *best) {
    for (i32 i = halvings; i >= 0 && best->pair_count == 0; --i) {
        Candidate candidate;
        const bool going_on = candidate_try(layout, cell, place, i, &candidate);
        keep(best, &candidate, candidate.possible);
        if (!going_on) {
            return false;
        }
    }
    return true;
}

// Halves a section about its middle until few enough polygons are left.
//   halvings   in/out: the first one to try, and the one that was taken
//   section    the first one that is tried, then the best
// False after an interrupt.
static bool narrow(const GdsDatabase *layout, GdsCell *cell, const Place *place, i64 most, i32 *halvings,
                   StarterSection *section) {
    for (i32 i = *halvings; i <= place->halvings_most; ++i) {
        Candidate candidate;
        const bool going_on = candidate_try(layout, cell, place, i, &candidate);
        const bool better = candidate.seen > 0;
        *halvings = better ? i : *halvings;
        keep(section, &candidate, better);
        if (!going_on) {
            return false;
        }
        const bool small = candidate.met <= most && candidate.met <= 2 * candidate.seen;
        if (candidate.possible && (candidate.met == 0 || small)) {
            break;
        }
    }
    return true;
}

// The middle of one of several places that lie evenly over a side of the cell, so that a section of `size`
// lies in the cell.
static f64 place_along(f64 middle, f64 side, f64 size, i32 number) {
    const f64 away = (2.0 * number + 1.0 - PLACES) / (2.0 * PLACES) * side;
    const f64 most = std::max(0.0, (side - size) / 2.0);
    return middle + std::clamp(away, -most, most);
}

// Places that may show more than the middle of the cell.
struct OtherPlaces {
    Place pairs, polygons;  // where a section meets the most of them
    i32 most_pairs;
    i64 most_polygons;
};

// Looks at several places all over the cell. False after an interrupt.
static bool look_around(const GdsDatabase *layout, GdsCell *cell, const Place *middle, i32 halvings,
                        OtherPlaces *others) {
    const f64 width = section_at(middle, halvings).width_um;
    for (i32 i = 0; i < PLACES * PLACES; ++i) {
        Place place = *middle;
        place.middle_x = place_along(middle->middle_x, middle->width, width, i % PLACES);
        place.middle_y = place_along(middle->middle_y, middle->height, width * DEPTH_OF_WIDTH, i / PLACES);
        Candidate candidate;
        const bool going_on = candidate_try(layout, cell, &place, halvings, &candidate);
        const i32 pairs = candidate.section.pair_count;
        starter_section_free(&candidate.section);
        if (!going_on) {
            return false;
        }
        if (pairs > others->most_pairs) {
            others->pairs = place;
            others->most_pairs = pairs;
        }
        if (candidate.met > others->most_polygons) {
            others->polygons = place;
            others->most_polygons = candidate.met;
        }
    }
    return true;
}

// Takes the section of another place where it meets more pairs. False after an interrupt.
static bool move_there(const GdsDatabase *layout, GdsCell *cell, const Place *place, i64 most, i32 halvings,
                       StarterSection *section) {
    StarterSection other = {};
    const Owned<StarterSection> owner(&other);
    if (!narrow(layout, cell, place, most, &halvings, &other)) {
        return false;
    }
    if (other.pair_count > section->pair_count) {
        std::swap(*section, other);
        section->moved = true;
    }
    return true;
}

bool starter_section_choose(const GdsDatabase *layout, GdsCell *cell, const GdsPairList *polygons,
                            StarterSection *section) {
    assert(layout != nullptr && cell != nullptr && polygons != nullptr && section != nullptr);
    const Place place = place_of(layout, cell, polygons);
    if (polygons->count == 0 || !(place.width > 0) || !(place.height > 0)) {
        const Place origin = {0.5, 0.125, 1.0, DEPTH_LEAST, 0};
        *section = section_at(&origin, 0);
        return true;
    }
    const i64 most = std::max(POLYGONS_TO_SEE, POLYGONS_PER_PAIR * polygons->count);
    const i32 first = first_halvings(&place, polygons);
    i32 halvings = first;
    *section = section_at(&place, halvings);
    if (!narrow(layout, cell, &place, most, &halvings, section)) {
        return false;
    }
    if (section->pair_count * 3 >= polygons->count * 2) {
        return true;
    }
    OtherPlaces others = {place, place, 0, 0};
    halvings = std::min(std::max(halvings, PROBE_HALVINGS), place.halvings_most);
    return look_around(layout, cell, &place, halvings, &others) &&
           move_there(layout, cell, &others.pairs, most, halvings, section) &&
           move_there(layout, cell, &others.polygons, most, halvings, section) &&
           (section->pair_count > 0 || widen(layout, cell, &place, first - 1, section));
}

void starter_section_free(StarterSection *section) {
    assert(section != nullptr);
    memory_free(section->pairs);
    *section = StarterSection{};
}
