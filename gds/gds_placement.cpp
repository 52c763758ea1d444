#include "gds/gds_placement.h"

#include <cassert>
#include <cstring>

#include "platform/trigonometry.h"

// Angles met lately with what was worked out for them: a layout has few different ones, mostly right angles.
struct KnownAngle {
    u64 bits;  // of the angle
    f64 sine, cosine;
    bool known;
};

static constexpr u64 KNOWN_ANGLES = 256;
static thread_local KnownAngle known_angles[KNOWN_ANGLES];

PointTurn point_turn(f64 angle, f64 mag, bool reflected) {
    u64 bits = 0;
    std::memcpy(&bits, &angle, sizeof(bits));
    KnownAngle *place = &known_angles[(bits * 0x9E3779B97F4A7C15U) >> 56];  // multiplicative hashing (Knuth)
    if (!place->known || place->bits != bits) {
        place->bits = bits;
        place->known = true;
        exact_sin_cos(angle, &place->sine, &place->cosine);
    }
    return {place->cosine, place->sine, mag, reflected};
}

PointTurn placement_turn(GdsPlacement placement) {
    return point_turn(static_cast<f64>(placement.angle), static_cast<f64>(placement.mag),
                      placement.flags != 0);
}

GdsPlacement placement_child(const PointTurn *turn, GdsPlacement parent, Point origin, f32 mag, f32 angle,
                             u16 flags) {
    assert(turn != nullptr);
    GdsPlacement child;
    child.origin = point_move(turn_point(turn, origin), parent.origin);
    child.mag = parent.mag * mag;
    child.angle = parent.angle + angle;
    child.flags = static_cast<u16>((flags & GDS_REFLECTION) ^ parent.flags);
    return child;
}

Point point_place(Point point, f64 angle, f64 mag, bool reflected) {
    const PointTurn turn = point_turn(angle, mag, reflected);
    return turn_point(&turn, point);
}

static PointTurn inverse_turn(GdsPlacement placement) {
    return point_turn(-static_cast<f64>(placement.angle), 1.0 / static_cast<f64>(placement.mag),
                      placement.flags != 0);
}

static Point transform_back(const PointTurn *turn, Point origin, Point point) {
    return turn_point(turn, {wrap_subtract(point.x, origin.x), wrap_subtract(point.y, origin.y)});
}

Point transform_point(Point point, GdsPlacement placement, bool inverse) {
    if (inverse) {
        const PointTurn turn = inverse_turn(placement);
        return transform_back(&turn, placement.origin, point);
    }
    const PointTurn turn = placement_turn(placement);
    return point_move(turn_point(&turn, point), placement.origin);
}

Box box_place(Box box, GdsPlacement placement, bool inverse) {
    if (!inverse) {
        const PointTurn turn = placement_turn(placement);
        return placed_box(&turn, placement.origin, box);
    }
    const PointTurn turn = inverse_turn(placement);
    Box placed = BOX_EMPTY;
    box_grow_point(&placed, transform_back(&turn, placement.origin, {box.x_min, box.y_min}));
    box_grow_point(&placed, transform_back(&turn, placement.origin, {box.x_min, box.y_max}));
    box_grow_point(&placed, transform_back(&turn, placement.origin, {box.x_max, box.y_max}));
    box_grow_point(&placed, transform_back(&turn, placement.origin, {box.x_max, box.y_min}));
    return placed;
}
