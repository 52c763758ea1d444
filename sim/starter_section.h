// starter_section.h: a section of a cell to begin with, for somebody who knows nothing of the layout: over
// the middle of the cell, unless that shows little, and small enough that single polygons can be seen.
#pragma once
#include "gds/gds_pairs.h"

inline constexpr i32 STARTER_GRID = 400;  // -N of the section

// What the section meets of one layer and datatype.
struct StarterPair {
    u16 layer;
    u16 datatype;
    i64 count;  // polygons that are as wide as the grid's spacing
    f64 share;  // about the part of the section that they cover, 0 to 1 and, where they overlap, more
};

// A figure as a process file writes it, in micrometres.
struct StarterFigure {
    char text[32];
};

// All zero at the start.
struct StarterSection {
    StarterFigure x, y, width, depth;  // the arguments of `location`
    f64 width_um;
    bool moved;          // away from the middle of the cell
    StarterPair *pairs;  // owned; by layer, then by datatype
    i32 pair_count, pair_capacity;
};

// Chooses the section and looks at what lies in it. It is as wide as the cell's polygons, or four times as
// wide as they are high where that is less, so that its depth, which is at least a quarter of its width, lies
// in them too; with many polygons it is halved about the middle, again and again, until some hundred are
// left. Where that meets less than two thirds of the cell's pairs, the place that meets the most of several
// all over the cell is taken instead. A cell without polygons gets a section of 1 um at its origin.
//   cell       a cell of the layout, as gds_read leaves it
//   polygons   those of the cell and all cells below it, sorted
//   section    freed with starter_section_free
// False after an interrupt.
bool starter_section_choose(const GdsDatabase *layout, GdsCell *cell, const GdsPairList *polygons,
                            StarterSection *section);

// Frees the pairs; the record is all zero afterwards.
void starter_section_free(StarterSection *section);

// For a record that is a local of a function: owned through its address.
template <>
struct Freed<StarterSection> {
    void operator()(StarterSection *section) const { starter_section_free(section); }
};
