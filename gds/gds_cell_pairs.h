// gds_cell_pairs.h: what the polygons of whole cells are, with all that they refer to: the polygons that a
// section over a cell can meet. Arrays are counted by multiplication, never walked, so any number of elements
// and any depth of nesting is safe; cycles end.
#pragma once
#include "gds/gds_pairs.h"

inline constexpr i64 GDS_CELL_PAIRS_LIMIT = 4000000;  // of all lists together: 128 MB

struct GdsCellPairs {
    GdsPairList *lists;  // one a cell, in table order and sorted; empty for cells that were not asked for
    u8 *used;            // 1 for each cell that another one refers to
    i32 cell_count;
};

enum GdsCellPairsResult {
    GDS_CELL_PAIRS_DONE = 0,
    GDS_CELL_PAIRS_MANY,         // the limit, told with the cell that reached it
    GDS_CELL_PAIRS_INTERRUPTED,  // an interrupt has come
};

// Counts the polygons of the cell with all cells below it, or of every cell when it is null. A box is made of
// the placed boxes of the cells below, as a cell's extent is: it is exact for quarter turns, and may be wider
// for others. A reference that leads back to a cell further up the chain adds nothing, so of cells that refer
// to each other in a circle only the one that counting begins with, `cell` or the first one, has all.
//   database   as gds_read leaves it
//   pairs      all zero; freed with gds_cell_pairs_free, whatever the result is
GdsCellPairsResult gds_cell_pairs_count(const GdsDatabase *database, const GdsCell *cell,
                                        GdsCellPairs *pairs);

// Frees all lists; the record is all zero afterwards.
void gds_cell_pairs_free(GdsCellPairs *pairs);

// For a record that is a local of a function: owned through its address.
template <>
struct Freed<GdsCellPairs> {
    void operator()(GdsCellPairs *pairs) const { gds_cell_pairs_free(pairs); }
};
