// gds_hierarchy.h: bind references to cells, place points and boxes, compute the extent of cells.
#pragma once
#include "gds/gds_database.h"

// Binds every unbound reference to the first cell of its name.
// Returns 0, or 1 when at least one name matches no cell; such references stay unbound, as do any after an
// interrupt.
i32 gds_resolve_refs(GdsDatabase *database);

// Sets each cell's `bare`. References must be bound; an unbound one leads nowhere.
void gds_mark_bare(GdsDatabase *database);

// Reflection, rotation and magnification of a point; each coordinate truncated toward zero.
Point point_place(Point point, f64 angle, f64 mag, bool reflected);

// A point from the coordinates of a placed cell into its parent's, or back. The way back reflects
// before it rotates as well, so for a reflected placement it is not the exact inverse; kept so,
// since the cached extents of cells rest on it.
Point transform_point(Point point, GdsPlacement placement, bool inverse);

// The bounding box of a box's four placed corners.
Box box_place(Box box, GdsPlacement placement, bool inverse);

// A reference's placement in the coordinates that its parent is placed in. Angles add even under
// reflection. `origin` is the reference's own origin (for an AREF that of one element).
GdsPlacement placement_compose(GdsPlacement parent, Point origin, f32 mag, f32 angle, u16 flags);

// The origin of one element of an AREF with at least one column and row, single precision.
Point aref_element_origin(const GdsARef *aref, i32 column, i32 row);

// The cell's extent, its own origin included, in the coordinates of the placement's parent.
// Fills the cell's cache; a cell first met through a rotated reference keeps the wider box of
// that visit. Any depth of nesting and any size of AREF is safe; cycles end. After an interrupt the extents
// are of no use.
Box gds_cell_bbox(GdsCell *cell, GdsPlacement placement, i32 depth);
