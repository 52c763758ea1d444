// gds_lattice.h: where the elements of an AREF lie, one by one and as bounds over whole blocks of
// them, so that arrays of 65535 x 65535 elements are sized and cut without visiting each.
#pragma once
#include "gds/gds_placement.h"

// One coordinate of the element origins as a plain sum, at + column x by_column + row x by_row, and how far
// rounding can take it from that.
struct LatticeSum {
    f64 at, by_column, by_row;
    f64 error;
};

// The element origins of one AREF whose cell is placed. Single precision up to the truncation.
struct Lattice {
    f32 column_x, column_y;   // column pitch
    f32 row_x, row_y;         // row pitch
    f32 first_x, first_y;     // origin of element (0, 0)
    PointTurn turn;           // of the placement of the AREF's cell
    Point origin;             // of the same
    bool turned;              // not by 0 degrees: then
    LatticeSum sum_x, sum_y;  // those of the elements, but for `origin`
};

// A block of elements: columns column_begin to column_end - 1, rows row_begin to row_end - 1.
struct LatticeBlock {
    i32 column_begin, column_end;
    i32 row_begin, row_end;
};

// Where lines of elements are cut off a block.
enum LatticeSide { ROWS_FIRST, ROWS_LAST, COLUMNS_FIRST, COLUMNS_LAST };

struct Range {
    i64 low, high;  // both included
};

// Where the origins of a block's elements lie. When `known` is false a coordinate wraps around for
// some of them only, and the ranges are those before wrapping.
struct LatticeOrigins {
    Range x, y;
    bool known;
};

// An AREF with at least one column and row, in a cell placed with `turn` at `origin`.
Lattice lattice_create(const GdsARef *aref, const PointTurn *turn, Point origin);

// The AREF's own origin of an element, in its cell's coordinates.
Point lattice_position(const Lattice *lattice, i32 column, i32 row);

// The origin of the element's placement, in the coordinates that the AREF's cell is placed in.
Point lattice_origin(const Lattice *lattice, i32 column, i32 row);

// Bounds that no element of the block exceeds; exact when both coordinates grow and fall together.
LatticeOrigins lattice_origins(const Lattice *lattice, LatticeBlock block);

// A box around the placed boxes of all elements, `corners` being the turned box of one.
Box lattice_box(const LatticeOrigins *origins, const BoxCorners *corners);

// Grows a box by equal boxes at the elements of a block, which may be empty: as if by each, but blocks that
// cannot reach beyond what has been found are left out. After an interrupt the box is of no use.
//   steps        in/out: parts of blocks looked at, but for the first few of each call
//   step_limit   of them; beyond it the box grows by what the parts that are left cannot exceed
// False when it has done so, and the box may be too wide.
bool lattice_grow_box(const Lattice *lattice, const BoxCorners *corners, LatticeBlock block, Box *box,
                      i64 *steps, i64 step_limit);

// How far the columns and the rows of a block spread its elements, database units before turning.
// 0 means that all of them give the same elements.
f32 lattice_column_spread(const Lattice *lattice, LatticeBlock block);
// The same for the rows.
f32 lattice_row_spread(const Lattice *lattice, LatticeBlock block);

// Rows or columns of a block.
i32 lattice_lines(LatticeBlock block, LatticeSide side);

// Takes that many rows or columns off a side of a block and returns them as a block.
LatticeBlock lattice_cut(LatticeBlock *block, LatticeSide side, i32 count);

// Elements of a block.
inline i64 lattice_block_size(LatticeBlock block) {
    return i64{block.column_end - block.column_begin} * (block.row_end - block.row_begin);
}
