// gds_slack.h: how far a placed cell can be moved without a change of what the window cuts from it. From that
// follows what other placements of the cell come to, without walking through it again.
#pragma once
#include "gds/gds_lattice.h"

// The moves after which every overlap test inside something comes out the same and no corner wraps around at
// the ends of i32.
struct FlattenSlack {
    Range x, y;
};

inline constexpr Range SLACK_ANY_RANGE = {-(i64{1} << 40), i64{1} << 40};  // beyond any difference of two i32
inline constexpr FlattenSlack SLACK_ANY = {SLACK_ANY_RANGE, SLACK_ANY_RANGE};

// Strict: a box that only touches the window is outside.
bool boxes_overlap(const Box *window, const Box *box);

// Takes the test of a box (or of a box around several that are all outside) against the window into account.
//   overlap   what the test gave
void slack_note(FlattenSlack *slack, const Box *window, const Box *box, bool overlap);

// Leaves the moves that both allow.
void slack_narrow(FlattenSlack *slack, const FlattenSlack *other);

// What the walk through a placed cell that added no polygon came to.
struct FlattenMemo {
    GdsPlacement placement;
    FlattenSlack slack;
    i64 skipped;  // polygons dropped as too small
    i64 frame;    // number of the walk of the parent where alone this holds; 0 everywhere
};

inline constexpr i32 CELL_MEMOS = 4;  // for different turns, or sides of the window

// The latest memos of one cell.
struct CellMemos {
    FlattenMemo at[CELL_MEMOS];
    i32 count;
    i32 next;  // where the next one goes
};

// Adds a memo, in place of the oldest one when there is no room.
void memos_add(CellMemos *memos, const FlattenMemo *memo);

// Placements of one cell that differ in their origins only.
struct PlacedGroup {
    GdsPlacement placement;  // but for the origin
    Range x, y;              // of the origins
    i64 frame;               // number of the parent's walk
};

// The memo that tells what each placement of the group comes to, or null. Then `slack` is narrowed to the
// moves of all of them together after which it still does.
const FlattenMemo *memos_find(const CellMemos *memos, const PlacedGroup *group, FlattenSlack *slack);
