#include "tests/gds/gds_twin.h"

#include <cmath>
#include <vector>

#include "platform/memory.h"
#include "platform/trigonometry.h"

static Point twin_point_place(Point point, f64 angle, f64 mag, bool reflected) {
    const f64 x = point.x;
    f64 y = point.y;
    if (reflected) {
        y = -y;
    }
    f64 sine = 0;
    f64 cosine = 0;
    exact_sin_cos(angle, &sine, &cosine);
    return {truncate_i32((x * cosine - y * sine) * mag), truncate_i32((y * cosine + x * sine) * mag)};
}

static Point twin_transform(Point point, GdsPlacement placement, bool inverse) {
    const f64 angle = static_cast<f64>(placement.angle);
    const f64 mag = static_cast<f64>(placement.mag);
    const Point origin = placement.origin;
    if (inverse) {
        const Point back = {wrap_subtract(point.x, origin.x), wrap_subtract(point.y, origin.y)};
        return twin_point_place(back, -angle, 1.0 / mag, placement.flags != 0);
    }
    const Point turned = twin_point_place(point, angle, mag, placement.flags != 0);
    return {wrap_add(turned.x, origin.x), wrap_add(turned.y, origin.y)};
}

static void twin_grow(Box *box, Box other) {
    if (other.x_min < box->x_min) {
        box->x_min = other.x_min;
    }
    if (other.y_min < box->y_min) {
        box->y_min = other.y_min;
    }
    if (other.x_max > box->x_max) {
        box->x_max = other.x_max;
    }
    if (other.y_max > box->y_max) {
        box->y_max = other.y_max;
    }
}

static Box twin_box_place(Box box, GdsPlacement placement, bool inverse) {
    const Point corners[4] = {
        {box.x_min, box.y_min}, {box.x_min, box.y_max}, {box.x_max, box.y_max}, {box.x_max, box.y_min}};
    Box placed = BOX_EMPTY;
    for (const Point corner : corners) {
        const Point at = twin_transform(corner, placement, inverse);
        twin_grow(&placed, {at.x, at.y, at.x, at.y});
    }
    return placed;
}

static GdsPlacement twin_child(GdsPlacement parent, Point origin, f32 mag, f32 angle, u16 flags) {
    const Point turned = twin_point_place(origin, static_cast<f64>(parent.angle),
                                          static_cast<f64>(parent.mag), parent.flags != 0);
    GdsPlacement child;
    child.origin = {wrap_add(parent.origin.x, turned.x), wrap_add(parent.origin.y, turned.y)};
    child.mag = parent.mag * mag;
    child.angle = parent.angle + angle;
    child.flags = static_cast<u16>((flags & 0x8000) ^ parent.flags);
    return child;
}

static Point twin_element(const GdsARef *aref, i32 c, i32 r) {
    const f32 column_x =
        static_cast<f32>(wrap_subtract(aref->p2.x, aref->p1.x)) / static_cast<f32>(aref->cols);
    const f32 column_y =
        static_cast<f32>(wrap_subtract(aref->p2.y, aref->p1.y)) / static_cast<f32>(aref->cols);
    const f32 row_x = static_cast<f32>(wrap_subtract(aref->p3.x, aref->p1.x)) / static_cast<f32>(aref->rows);
    const f32 row_y = static_cast<f32>(wrap_subtract(aref->p3.y, aref->p1.y)) / static_cast<f32>(aref->rows);
    const f32 cf = static_cast<f32>(c);
    const f32 rf = static_cast<f32>(r);
    const f32 x = rf * row_x + (cf * column_x + static_cast<f32>(aref->p1.x));
    const f32 y = rf * row_y + (cf * column_y + static_cast<f32>(aref->p1.y));
    return {truncate_i32(static_cast<f64>(x)), truncate_i32(static_cast<f64>(y))};
}

Box twin_cell_bbox(GdsCell *cell, GdsPlacement placement) {
    if (cell->bbox_valid != 0) {
        return twin_box_place(cell->bbox, placement, false);
    }
    Box box = {0, 0, 0, 0};
    for (i32 i = 0; i < cell->polygon_count; ++i) {
        twin_grow(&box, cell->polygons[i].bbox);
    }
    box = twin_box_place(box, placement, false);
    cell->visiting = 1;
    for (i32 i = 0; i < cell->sref_count; ++i) {
        const GdsSRef *sref = &cell->srefs[i];
        if (sref->cell->visiting == 0) {
            twin_grow(&box, twin_cell_bbox(sref->cell, twin_child(placement, sref->origin, sref->mag,
                                                                  sref->angle, sref->flags)));
        }
    }
    for (i32 i = 0; i < cell->aref_count; ++i) {
        const GdsARef *aref = &cell->arefs[i];
        for (i32 c = 0; c < aref->cols && aref->cell->visiting == 0; ++c) {
            for (i32 r = 0; r < aref->rows; ++r) {
                twin_grow(&box, twin_cell_bbox(aref->cell, twin_child(placement, twin_element(aref, c, r),
                                                                      aref->mag, aref->angle, aref->flags)));
            }
        }
    }
    cell->visiting = 0;
    cell->bbox = twin_box_place(box, placement, true);
    cell->bbox_valid = 1;
    return box;
}

static bool twin_overlap(Box window, Box box) {
    return window.x_min < box.x_max && window.x_max > box.x_min && window.y_max > box.y_min &&
           window.y_min < box.y_max;
}

static FlatPolygon twin_flat(const FlattenContext *context, const GdsPolygon *polygon,
                             GdsPlacement placement) {
    FlatPolygon flat;
    flat.points = memory_new_array<FlatPoint>(polygon->point_count);
    flat.point_count = polygon->point_count;
    flat.layer = polygon->layer;
    flat.datatype = polygon->datatype;
    Box box = BOX_EMPTY;
    for (i32 i = 0; i < polygon->point_count; ++i) {
        const Point at = twin_transform(polygon->points[i], placement, false);
        twin_grow(&box, {at.x, at.y, at.x, at.y});
        flat.points[i].x = static_cast<f32>(wrap_subtract(at.x, context->window.x_min)) * context->scale;
        flat.points[i].y = static_cast<f32>(wrap_subtract(at.y, context->window.y_min)) * context->scale;
    }
    flat.x_min = static_cast<f32>(wrap_subtract(box.x_min, context->window.x_min)) * context->scale;
    flat.y_min = static_cast<f32>(wrap_subtract(box.y_min, context->window.y_min)) * context->scale;
    flat.x_max = static_cast<f32>(wrap_subtract(box.x_max, context->window.x_min)) * context->scale;
    flat.y_max = static_cast<f32>(wrap_subtract(box.y_max, context->window.y_min)) * context->scale;
    return flat;
}

static i32 twin_child_flatten(FlattenContext *context, GdsCell *cell, GdsPlacement placement) {
    if (cell->visiting != 0 || !twin_overlap(context->window, twin_box_place(cell->bbox, placement, false))) {
        return 0;
    }
    return twin_flatten(context, cell, placement);
}

static i32 twin_flatten_references(FlattenContext *context, GdsCell *cell, GdsPlacement placement) {
    i32 result = 0;
    for (i32 i = 0; i < cell->sref_count && result == 0; ++i) {
        const GdsSRef *sref = &cell->srefs[i];
        result = twin_child_flatten(context, sref->cell,
                                    twin_child(placement, sref->origin, sref->mag, sref->angle, sref->flags));
    }
    for (i32 i = 0; i < cell->aref_count; ++i) {
        const GdsARef *aref = &cell->arefs[i];
        for (i32 c = 0; c < aref->cols && result == 0; ++c) {
            for (i32 r = 0; r < aref->rows && result == 0; ++r) {
                result = twin_child_flatten(
                    context, aref->cell,
                    twin_child(placement, twin_element(aref, c, r), aref->mag, aref->angle, aref->flags));
            }
        }
    }
    return result;
}

i32 twin_flatten(FlattenContext *context, GdsCell *cell, GdsPlacement placement) {
    for (i32 i = 0; i < cell->polygon_count; ++i) {
        const GdsPolygon *polygon = &cell->polygons[i];
        const Box box = twin_box_place(polygon->bbox, placement, false);
        if (polygon->point_count == 0 || !twin_overlap(context->window, box)) {
            continue;
        }
        const i64 width = i64{box.x_max} - box.x_min;
        const i64 height = i64{box.y_max} - box.y_min;
        const i64 size = width < height ? width : height;
        if (size < context->smallest) {
            context->smallest = size;
        }
        if (size < context->min_size) {
            ++context->skipped;
            continue;
        }
        PolygonList *out = context->out;
        array_append(&out->items, &out->count, &out->capacity, twin_flat(context, polygon, placement));
        if (out->count == 10000000) {
            return 30;
        }
    }
    cell->visiting = 1;
    const i32 result = twin_flatten_references(context, cell, placement);
    cell->visiting = 0;
    return result;
}

// The line a x + b y + c = 0 of a segment, and c of both sides.
struct TwinLine {
    f64 a, b, left, right;
};

static Point twin_foot(const TwinLine &line, f64 c, Point from) {
    const f64 k = line.a * from.y - line.b * from.x;
    const f64 divisor = -line.a * line.a - line.b * line.b;
    return {truncate_i32((line.a * c + line.b * k) / divisor),
            truncate_i32((line.b * c - line.a * k) / divisor)};
}

static Point twin_meet(const TwinLine &one, f64 c1, const TwinLine &two, f64 c2) {
    const f64 determinant = one.a * two.b - two.a * one.b;
    return {truncate_i32((one.b * c2 - two.b * c1) / determinant),
            truncate_i32((two.a * c1 - one.a * c2) / determinant)};
}

static Point twin_extended(Point end, Point inner, f64 distance) {
    const f64 x = static_cast<f64>(end.x) - inner.x;
    const f64 y = static_cast<f64>(end.y) - inner.y;
    const f64 length = std::sqrt(x * x + y * y);
    return {wrap_add(end.x, truncate_i32(x * distance / length)),
            wrap_add(end.y, truncate_i32(y * distance / length))};
}

i32 twin_path(Point *out, const Point *points, i32 count, u32 width, u16 path_type) {
    const f64 half = static_cast<f64>(width) * 0.5;
    std::vector<TwinLine> lines;
    for (i32 i = 0; i + 1 < count; ++i) {
        const f64 x = static_cast<f64>(points[i + 1].x) - points[i].x;
        const f64 y = static_cast<f64>(points[i + 1].y) - points[i].y;
        const f64 length = std::sqrt(x * x + y * y);
        const f64 c = points[i].y * x - points[i].x * y;
        lines.push_back({y, -x, c + length * half, c - length * half});
        const bool parallel = i > 0 && lines[i - 1].a * lines[i].b - lines[i].a * lines[i - 1].b == 0.0;
        if (length == 0.0 || parallel) {
            return 0;
        }
    }
    const i32 last = count - 1;
    Point start = points[0];
    Point end = points[last];
    if (path_type == 2) {
        const Point second = points[1];
        const Point before = points[last - 1];
        if ((start.x == second.x && start.x == second.y) || (end.x == before.x && end.x == before.y)) {
            return 0;
        }
        start = twin_extended(start, second, half);
        end = twin_extended(end, before, half);
    }
    out[0] = twin_foot(lines[0], lines[0].left, start);
    out[2 * count - 1] = twin_foot(lines[0], lines[0].right, start);
    for (i32 i = 1; i < last; ++i) {
        out[i] = twin_meet(lines[i - 1], lines[i - 1].left, lines[i], lines[i].left);
        out[2 * count - 1 - i] = twin_meet(lines[i - 1], lines[i - 1].right, lines[i], lines[i].right);
    }
    out[last] = twin_foot(lines[last - 1], lines[last - 1].left, end);
    out[count] = twin_foot(lines[last - 1], lines[last - 1].right, end);
    out[2 * count] = out[0];
    return 1;
}
