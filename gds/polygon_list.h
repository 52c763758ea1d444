// polygon_list.h: the polygons cut out of the layout for one run.
#pragma once
#include "platform/owned.h"

struct FlatPoint {
    f32 x, y;
};

// One polygon in micrometres from the lower-left corner of the window it was cut from.
struct FlatPolygon {
    FlatPoint *points;  // owned
    i32 point_count;
    u16 layer;
    u16 datatype;
    f32 x_min, y_min, x_max, y_max;
};

struct PolygonList {
    FlatPolygon *items;
    i32 count, capacity;
    f32 smallest_size;  // smallest side of any polygon met, micrometres
    i64 skipped;        // polygons dropped as too small
    i64 point_total;    // points of all items
};

// An empty list with room for 512, freed with polygon_list_free.
PolygonList *polygon_list_create();

// Frees the list with every point array; takes null.
void polygon_list_free(PolygonList *list);

template <>
struct Freed<PolygonList> {
    void operator()(PolygonList *list) const { polygon_list_free(list); }
};
