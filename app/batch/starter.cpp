#include "app/batch/starter.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>

#include "app/batch/batch_output.h"
#include "app/batch/named_cell.h"
#include "gds/gds_cell_pairs.h"
#include "log/log.h"
#include "log/shown_text.h"
#include "platform/decimal_power.h"
#include "platform/platform.h"
#include "sim/stack_extract.h"
#include "sim/starter_section.h"

static constexpr size_t NAME_MOST = 1000;   // bytes that fit a line beside "gds -cell "
static constexpr i32 CELLS_TOLD = 20;       // other top cells
static constexpr i32 LEGEND_MOST = 24;      // rows that fit beside a picture
static constexpr f64 WIDE_SHARE = 0.15;     // of the section: larger polygons would hide what lies below
static constexpr f64 THICKNESS_MOST = 1e5;  // nanometres that a film or resist should have
static constexpr f64 GOLDEN = 0.618033988749895;  // hues this far apart never come close to each other

// Whether the `gds` command can name the cell and finds this one.
static bool can_be_named(const GdsDatabase *layout, const GdsCell *cell) {
    const char *name = nstring_text(cell->name);
    return name[0] != 0 && name[0] != '-' && std::strpbrk(name, " \t\v\f\r\n") == nullptr &&
           std::strlen(name) <= NAME_MOST && extract_cell_find(layout, name) == cell;
}

static i64 polygons_of(const GdsPairList *list) {
    i64 count = 0;
    for (i32 i = 0; i < list->count; ++i) {
        count = gds_count_add(count, list->items[i].count);
    }
    return count;
}

// The cell with the most polygons among the top cells, or among all when they refer to each other in a circle
// and none is on top. Null without one that can be named.
static GdsCell *choose_cell(const GdsDatabase *layout, const GdsCellPairs *pairs) {
    GdsCell *best = nullptr;
    for (const bool top : {true, false}) {
        i64 most = -1;
        for (i32 i = 0; i < layout->cell_count && (top || best == nullptr); ++i) {
            GdsCell *cell = &layout->cells[i];
            const i64 count = polygons_of(&pairs->lists[i]);
            if ((!top || pairs->used[i] == 0) && count > most && can_be_named(layout, cell)) {
                best = cell;
                most = count;
            }
        }
    }
    return best;
}

// The cell of that name, or the one to begin with; null after telling why not.
static GdsCell *find_cell(const GdsDatabase *layout, const GdsCellPairs *pairs, const char *name) {
    GdsCell *cell = name != nullptr ? named_cell_find(layout, name) : choose_cell(layout, pairs);
    if (cell == nullptr && name == nullptr) {
        diagnostic_write(L"the layout has no cell whose name a process file can write");
    } else if (cell != nullptr && !can_be_named(layout, cell)) {
        diagnostic_write(
            L"a process file cannot name the cell \"%ls\": names there are single words of at most "
            L"%d characters that do not begin with a dash",
            shown_text(name).text, static_cast<i32>(NAME_MOST));
        cell = nullptr;
    }
    return cell;
}

// A name in a comment: one line, whatever is in it.
static void print_name(const char *before, const NString *name) {
    const NarrowText shown = platform_system_from_wide(shown_text(nstring_text(name)).text);
    batch_output_printf("%s%s\n", before, shown.get());
}

static void print_other_cells(const GdsDatabase *layout, const GdsCellPairs *pairs, const GdsCell *chosen) {
    i32 count = 0;
    for (i32 i = 0; i < layout->cell_count; ++i) {
        const GdsCell *cell = &layout->cells[i];
        if (pairs->used[i] == 0 && cell != chosen && count++ < CELLS_TOLD) {
            if (count == 1) {
                batch_output_printf("# Other cells that no cell refers to:\n");
            }
            print_name("#   ", cell->name);
        }
    }
    if (count > CELLS_TOLD) {
        batch_output_printf("#   and %d more\n", count - CELLS_TOLD);
    }
}

static void print_head(const GdsDatabase *layout, const GdsCellPairs *pairs, const GdsCell *cell,
                       bool has_polygons) {
    print_name("# A process file to begin with, made by quarn-batch --starter for the cell ", cell->name);
    print_other_cells(layout, pairs, cell);
    if (!has_polygons) {
        batch_output_printf(
            "#\n"
            "# The cell has no polygons, so there are no masks: a film stands here, to have something to "
            "see.\n"
            "# Positions are micrometres, thicknesses and depths nanometres.\n");
        return;
    }
    batch_output_printf(
        "#\n"
        "# Each pair of layer and datatype becomes blocks of a film of its own. What the layers are for,\n"
        "# the layout does not say: take out what you do not need, bring the rest into the order of the\n"
        "# process, and give it the names and thicknesses of your films.\n"
        "# Positions are micrometres, thicknesses and depths nanometres.\n");
}

static void print_section(const GdsCell *cell, const StarterSection *section, bool has_polygons) {
    const char *where = !has_polygons ? "# At the origin of the cell."
                        : section->moved
                            ? "# Over a part of the cell that shows more of its layers than the middle does."
                            : "# Over the middle of the cell's polygons.";
    batch_output_printf(
        "\n"
        "settings -version 3 -N %d -angle 40%s\n"
        "gds -cell %s\n"
        "\n"
        "%s\n"
        "# The front of the pictures is the cut from (x, y) to the right; what lies behind it shows up to\n"
        "# y + dy. The depth is at least a quarter of the width and at most the width.\n"
        "location -x %s -y %s -dx %s -dy %s\n",
        STARTER_GRID, section->pair_count <= LEGEND_MOST ? " -legend" : "", nstring_text(cell->name), where,
        section->x.text, section->y.text, section->width.text, section->depth.text);
}

// Red, green and blue of a hue from 0 to 1, neither pale nor dark.
struct Color {
    i32 red, green, blue;
};

static Color color_of(i32 number) {
    const f64 hue = std::fmod(number * GOLDEN, 1.0);
    auto part = [hue](f64 centre) {
        const f64 away =
            std::fabs(std::fmod(hue - centre + 1.5, 1.0) - 0.5);  // 0 at the centre, 0.5 opposite
        return static_cast<i32>(90.0 + 140.0 * std::clamp(2.0 - 6.0 * away, 0.0, 1.0));
    };
    return {part(0.0), part(1.0 / 3.0), part(2.0 / 3.0)};
}

// Two figures, at least 1.
static f64 round_nanometres(f64 value) {
    if (value <= 1.0) {
        return 1.0;
    }
    const f64 step = decimal_power(value) / 10.0;
    return std::floor(value / step) * step;
}

// Thickness of each film: films that all lie on one another stay lower than the section is wide, and the
// thickest resist stays within what a process file should ask for.
static f64 film_thickness(const StarterSection *section) {
    const f64 count = section->pair_count;
    const f64 by_width = section->width_um * 1000.0 / std::max(60.0, 1.5 * count);
    return round_nanometres(std::min(by_width, THICKNESS_MOST / (1.25 * count + 3.0)));
}

static void print_figures(const GdsPair *pair, f64 unit, const char *more) {
    batch_output_printf("\n# Layer %d, datatype %d: %s%lld polygon%s from (%.9g, %.9g) to (%.9g, %.9g)%s\n",
                        pair->layer, pair->datatype, pair->count == I64_MAX ? "at least " : "",
                        static_cast<long long>(pair->count), pair->count == 1 ? "" : "s",
                        pair->box.x_min * unit, pair->box.y_min * unit, pair->box.x_max * unit,
                        pair->box.y_max * unit, more);
}

// A film, a photo and an etch of one pair.
//   before      what each line begins with
//   number      of the film, from 0
//   thickness   of every film, nanometres
static void print_steps(const char *before, const GdsPair *pair, i32 number, f64 thickness) {
    const Color color = color_of(number);
    const i32 layer = pair->layer;
    const i32 datatype = pair->datatype;
    // Whatever stands there is at most as high as all films so far. The film can be thicker beside a step, so
    // the etch goes deeper the more there are; it takes half its depth from the resist.
    const f64 depth = thickness * (2.0 + 0.5 * number);
    const f64 resist = std::min(thickness * (number + 1.5) + depth / 2.0, THICKNESS_MOST);
    batch_output_printf(
        "%sdeposition -name L%d_%d -type t%d_%d -thickness %.9g -sc 0 -color %d %d %d 100\n"
        "%sphoto -name L%d_%d -mask_id %d -datatype %d -type 1 -res 0 -thickness %.9g\n"
        "%setch -name L%d_%d -targets t%d_%d -depth %.9g\n"
        "%sstrip\n",
        before, layer, datatype, layer, datatype, thickness, color.red, color.green, color.blue, before,
        layer, datatype, layer, datatype, resist, before, layer, datatype, layer, datatype, depth, before);
}

// How much of the section one polygon covers on average.
static f64 mean_share(const StarterPair *pair) {
    return pair->share / static_cast<f64>(pair->count);
}

// The numbers of the section's pairs in the order of their films: first those of few large polygons, as wells
// and outlines are, the largest at the bottom; then the others by layer and datatype.
static Owned<i32[]> order_pairs(const StarterSection *section) {
    Owned<i32[]> order = memory_scratch<i32>(section->pair_count);
    for (i32 i = 0; i < section->pair_count; ++i) {
        order[i] = i;
    }
    std::stable_sort(order.get(), order.get() + section->pair_count, [section](i32 a, i32 b) {
        const f64 one = mean_share(&section->pairs[a]);
        const f64 two = mean_share(&section->pairs[b]);
        return one > WIDE_SHARE && one > two;
    });
    return order;
}

static void print_pairs(const GdsPairList *list, const StarterSection *section, f64 unit) {
    const f64 thickness = film_thickness(section);
    const Owned<i32[]> order = order_pairs(section);
    const auto printed = memory_scratch_zeroed<u8>(list->count);
    for (i32 i = 0; i < section->pair_count && !platform_interrupted(); ++i) {
        const StarterPair *met = &section->pairs[order[i]];
        const GdsPair *pair = gds_pairs_find(list, met->layer, met->datatype);
        assert(pair != nullptr && "the section lies in the cell");
        printed[pair - list->items] = 1;
        print_figures(pair, unit, "");
        print_steps("", pair, i, thickness);
    }
    for (i32 i = 0; i < list->count && !platform_interrupted(); ++i) {
        if (printed[i] == 0) {
            print_figures(&list->items[i], unit, ";\n# the section meets none that its grid can show.");
            print_steps("# ", &list->items[i], section->pair_count, thickness);
        }
    }
}

static BatchStatus status_of(GdsCellPairsResult result) {
    switch (result) {
        case GDS_CELL_PAIRS_MANY: return BATCH_LAYOUT_FAILED;
        case GDS_CELL_PAIRS_INTERRUPTED: return BATCH_INTERRUPTED;
        default: return BATCH_DONE;
    }
}

// The file of a chosen cell.
//   list   its polygons
static BatchStatus print_file(const GdsDatabase *layout, const GdsCellPairs *all, GdsCell *cell,
                              const GdsPairList *list) {
    StarterSection section = {};
    const Owned<StarterSection> owner(&section);
    if (!starter_section_choose(layout, cell, list, &section)) {
        return BATCH_INTERRUPTED;
    }
    const bool has_polygons = list->count > 0;
    print_head(layout, all, cell, has_polygons);
    print_section(cell, &section, has_polygons);
    if (!has_polygons) {
        // Standard output may be a file that nobody looks at.
        diagnostic_write(L"cell \"%ls\" has no polygons, of which masks could be made",
                         shown_text(nstring_text(cell->name)).text);
        batch_output_printf(
            "\n"
            "deposition -name FILM -type film -thickness 50 -sc 0 -color 90 150 230 100\n");
    }
    print_pairs(list, &section, layout->unit);
    return platform_interrupted() ? BATCH_INTERRUPTED : BATCH_DONE;
}

BatchStatus starter_print(const GdsDatabase *layout, const char *cell_name) {
    assert(layout != nullptr);
    GdsCellPairs all = {};
    const Owned<GdsCellPairs> all_owner(&all);
    BatchStatus status = status_of(gds_cell_pairs_count(layout, nullptr, &all));
    if (status != BATCH_DONE) {
        return status;
    }
    GdsCell *cell = find_cell(layout, &all, cell_name);
    if (cell == nullptr) {
        return BATCH_PROCESS_FAILED;
    }
    // Counted from this cell on, since where cells refer to each other in a circle only the list of the cell
    // that counting begins with is sure to have every pair below it.
    GdsCellPairs pairs = {};
    const Owned<GdsCellPairs> owner(&pairs);
    status = status_of(gds_cell_pairs_count(layout, cell, &pairs));
    return status == BATCH_DONE ? print_file(layout, &all, cell, &pairs.lists[cell - layout->cells]) : status;
}
