// gds_database.h: the layout in memory: cells with their polygons and references to other cells.
// Coordinates are signed database units, x to the right, y up; angles are radians, counter-clockwise.
#pragma once
#include "gds/gds_names.h"

struct Point {
    i32 x, y;
};

struct Box {
    i32 x_min, y_min, x_max, y_max;
};

// A box that any point grows.
inline constexpr Box BOX_EMPTY = {I32_MAX, I32_MAX, I32_MIN, I32_MIN};

inline constexpr u16 GDS_REFLECTION = 0x8000;  // reflection about the x axis, before rotation

// A BOUNDARY as in the file, closing point included, or a PATH made into its outline.
struct GdsPolygon {
    Point *points;  // in the store of the database
    Box bbox;       // BOX_EMPTY without points
    i32 point_count;
    u16 layer;
    u16 datatype;  // 0 without DATATYPE
};
static_assert(sizeof(GdsPolygon) <= 32, "a layout has millions of them");

struct GdsCell;

// SREF: one placement of a cell.
struct GdsSRef {
    Point origin;
    GdsName *name;  // in the database's table; null without SNAME
    GdsCell *cell;  // the cell of that name, null until references are bound
    u16 flags;      // the STRANS word; only GDS_REFLECTION is used
    f32 angle;
    f32 mag;
};

// AREF: a lattice of placements.
struct GdsARef {
    Point p1, p2, p3;  // origin, end of the columns, end of the rows
    GdsName *name;     // as in GdsSRef
    GdsCell *cell;     // as in GdsSRef
    i32 cols, rows;
    u16 flags;
    f32 angle;
    f32 mag;
};

// A list of a capacity of 0 that has items lies in the store of the database; any other list is the cell's
// own.
struct GdsCell {
    NString *name;  // in the store of the database; null without STRNAME
    GdsPolygon *polygons;
    i32 polygon_count, polygon_capacity;
    GdsSRef *srefs;
    i32 sref_count, sref_capacity;
    GdsARef *arefs;
    i32 aref_count, aref_capacity;
    Box bbox;            // extent in the cell's own coordinates, its origin included
    i32 bbox_valid;      // 1 once bbox holds it
    i32 visiting;        // 1 while the cell is sized or flattened further up a chain of references
    i32 flatten_number;  // while flattening goes on: place of the cell among those entered, from 1; else 0
    i32 acyclic;         // 1 when no cycle can be reached from the cell; 0 also when not known
    i32 bare;            // 1 when neither the cell nor any cell below it has a polygon; 0 also when not known
};

struct GdsDatabase {
    f64 unit;  // micrometres per database unit; 0 until UNITS is read
    GdsCell *cells;
    i32 cell_count, cell_capacity;
    GdsStore store;    // what the cells hold, but for lists of their own
    GdsNames names;    // of all references
    u16 version;       // of the HEADER record
    u8 units_raw[16];  // the data of the UNITS record, as written back by gds_write_polygons
};

// How a cell lies in its parent: reflection first, then rotation and magnification, then the origin.
struct GdsPlacement {
    Point origin;
    f32 mag;
    f32 angle;
    u16 flags;  // any value but 0 counts as reflected
};

inline constexpr GdsPlacement GDS_PLACEMENT_IDENTITY = {{0, 0}, 1.0F, 0.0F, 0};

// A cell placed somewhere.
struct GdsInstance {
    GdsCell *cell;
    GdsPlacement placement;
    i32 depth;  // 1 for the top cell of a flattening, one more per level
};

// Room for the points of a polygon, freed with the database. Lack of memory ends the program.
Point *gds_add_points(GdsDatabase *database, i64 count);

// A name for a cell, a copy of so many bytes; freed with the database.
NString *gds_add_name(GdsDatabase *database, const char *text, i64 length);

// Frees the lists that are a cell's own and leaves it zeroed.
void gds_cell_clear(GdsCell *cell);

// Frees the database and all it holds, itself last; null is ignored.
void gds_free(GdsDatabase *database);

template <>
struct Freed<GdsDatabase> {
    void operator()(GdsDatabase *database) const { gds_free(database); }
};
