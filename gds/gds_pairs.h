// gds_pairs.h: polygons counted by layer and datatype, the two numbers by which layouts tell drawings apart.
#pragma once
#include "gds/gds_database.h"
#include "platform/owned.h"

// The polygons of one layer and datatype.
struct GdsPair {
    u16 layer;
    u16 datatype;
    i64 count;  // stays at I64_MAX when there are more
    Box box;    // around them all, database units
};

// All zero is a valid empty list.
struct GdsPairList {
    GdsPair *items;
    i32 count, capacity;
    i32 sorted_count;  // the first ones are in order, each pair once; the others may repeat any
};

// Adds polygons to those of their pair.
void gds_pairs_add(GdsPairList *list, const GdsPair *pair);

// Adds the polygons that stand in the cell itself. Those without points, which are never drawn, do not count.
void gds_pairs_add_cell(GdsPairList *list, const GdsCell *cell);

// Brings the list in order: by layer, then by datatype, each pair once.
void gds_pairs_sort(GdsPairList *list);

// The polygons of a pair in a list in order; null without any.
const GdsPair *gds_pairs_find(const GdsPairList *list, i32 layer, i32 datatype);

// Frees the items; the list is empty afterwards.
void gds_pairs_free(GdsPairList *list);

// a + b and a * b of counts, which stay at I64_MAX.
i64 gds_count_add(i64 a, i64 b);
i64 gds_count_times(i64 a, i64 b);

// For a list that is a local of a function: owned through its address.
template <>
struct Freed<GdsPairList> {
    void operator()(GdsPairList *list) const { gds_pairs_free(list); }
};
