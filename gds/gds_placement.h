// gds_placement.h: points and boxes under placements, at the end one by one, before that with sine and cosine
// worked out once for the inner loops of sizing and flattening. Both give the same results.
#pragma once
#include <algorithm>
#include "gds/gds_database.h"

// Reflection, rotation and magnification, ready for use.
struct PointTurn {
    f64 cosine, sine, mag;
    bool reflected;
};

// Works out the sine and cosine of an angle in radians.
PointTurn point_turn(f64 angle, f64 mag, bool reflected);

// That of a placement, without its origin.
PointTurn placement_turn(GdsPlacement placement);

// point_place with the turn at hand.
inline Point turn_point(const PointTurn *turn, Point point) {
    const f64 x = point.x;
    const f64 y = turn->reflected ? -static_cast<f64>(point.y) : static_cast<f64>(point.y);
    return {truncate_i32((x * turn->cosine - y * turn->sine) * turn->mag),
            truncate_i32((y * turn->cosine + x * turn->sine) * turn->mag)};
}

// The addition wraps.
inline Point point_move(Point point, Point origin) {
    return {wrap_add(point.x, origin.x), wrap_add(point.y, origin.y)};
}

// The four corners of a box, turned.
struct BoxCorners {
    Point at[4];
};

// The corners of a box in the order of box_place.
inline BoxCorners turn_box(const PointTurn *turn, Box box) {
    return {{turn_point(turn, {box.x_min, box.y_min}), turn_point(turn, {box.x_min, box.y_max}),
             turn_point(turn, {box.x_max, box.y_max}), turn_point(turn, {box.x_max, box.y_min})}};
}

// The bounding box of turned corners moved to an origin; the additions wrap corner by corner. Two pairs
// first: where they lie is as good as random, so that nothing may branch or wait for the corner before.
inline Box corners_box(const BoxCorners *corners, Point origin) {
    const Point a = point_move(corners->at[0], origin);
    const Point b = point_move(corners->at[1], origin);
    const Point c = point_move(corners->at[2], origin);
    const Point d = point_move(corners->at[3], origin);
    return {
        std::min(std::min(a.x, b.x), std::min(c.x, d.x)), std::min(std::min(a.y, b.y), std::min(c.y, d.y)),
        std::max(std::max(a.x, b.x), std::max(c.x, d.x)), std::max(std::max(a.y, b.y), std::max(c.y, d.y))};
}

// box_place with the turn at hand.
inline Box placed_box(const PointTurn *turn, Point origin, Box box) {
    const BoxCorners corners = turn_box(turn, box);
    return corners_box(&corners, origin);
}

// Grows by a point.
inline void box_grow_point(Box *box, Point point) {
    box->x_min = point.x < box->x_min ? point.x : box->x_min;
    box->y_min = point.y < box->y_min ? point.y : box->y_min;
    box->x_max = point.x > box->x_max ? point.x : box->x_max;
    box->y_max = point.y > box->y_max ? point.y : box->y_max;
}

// Grows by another box; BOX_EMPTY grows nothing.
inline void box_grow(Box *box, Box other) {
    box->x_min = other.x_min < box->x_min ? other.x_min : box->x_min;
    box->y_min = other.y_min < box->y_min ? other.y_min : box->y_min;
    box->x_max = other.x_max > box->x_max ? other.x_max : box->x_max;
    box->y_max = other.y_max > box->y_max ? other.y_max : box->y_max;
}

// A reference's placement in the coordinates that its parent is placed in. Angles add even under reflection.
//   turn    that of the parent, from placement_turn
//   origin  the reference's own origin (for an AREF that of one element)
GdsPlacement placement_child(const PointTurn *turn, GdsPlacement parent, Point origin, f32 mag, f32 angle,
                             u16 flags);

// Reflection, rotation and magnification of a point; each coordinate truncated toward zero.
Point point_place(Point point, f64 angle, f64 mag, bool reflected);

// A point from the coordinates of a placed cell into its parent's, or back. The way back reflects
// before it rotates as well, so for a reflected placement it is not the exact inverse; kept so,
// since the cached extents of cells rest on it.
Point transform_point(Point point, GdsPlacement placement, bool inverse);

// The bounding box of a box's four placed corners.
Box box_place(Box box, GdsPlacement placement, bool inverse);
