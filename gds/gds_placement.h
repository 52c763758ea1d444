// gds_placement.h: placements with their sine and cosine worked out once, for the inner loops of
// sizing and flattening. Results are those of point_place, transform_point and box_place.
#pragma once
#include "gds/gds_database.h"

// Reflection, rotation and magnification, ready for use.
struct PointTurn {
    f64 cosine, sine, mag;
    bool reflected;
};

PointTurn point_turn(f64 angle, f64 mag, bool reflected);
PointTurn placement_turn(GdsPlacement placement);  // without the origin

inline Point turn_point(const PointTurn *turn, Point point) {
    const f64 x = point.x;
    const f64 y = turn->reflected ? -static_cast<f64>(point.y) : static_cast<f64>(point.y);
    return {truncate_i32((x * turn->cosine - y * turn->sine) * turn->mag),
            truncate_i32((y * turn->cosine + x * turn->sine) * turn->mag)};
}

inline Point point_move(Point point, Point origin) {
    return {wrap_add(point.x, origin.x), wrap_add(point.y, origin.y)};
}

// The four corners of a box, turned.
struct BoxCorners {
    Point at[4];
};

BoxCorners turn_box(const PointTurn *turn, Box box);

// The bounding box of turned corners moved to an origin; the additions wrap corner by corner.
Box corners_box(const BoxCorners *corners, Point origin);

inline Box placed_box(const PointTurn *turn, Point origin, Box box) {
    const BoxCorners corners = turn_box(turn, box);
    return corners_box(&corners, origin);
}

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

// placement_compose with the parent's turn at hand.
GdsPlacement placement_child(const PointTurn *turn, GdsPlacement parent, Point origin, f32 mag, f32 angle,
                             u16 flags);
