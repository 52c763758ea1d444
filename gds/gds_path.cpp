#include "gds/gds_path.h"

#include <cassert>
#include <cmath>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// The line a x + b y + c = 0 of one segment, with c moved to both sides by half the width.
struct OffsetLine {
    f64 a, b;
    f64 side_a, side_b;
};

// Both quotients, truncated as truncate_i32 does.
static Point truncated_quotients(f64 x, f64 y, f64 divisor) {
#ifdef __SSE2__
    // Both at once. The conversion gives the smallest integer for what does not fit, as truncate_i32 does.
    const __m128d quotients = _mm_div_pd(_mm_set_pd(y, x), _mm_set1_pd(divisor));
    Point point;
    static_assert(sizeof(point) == 8, "two whole numbers of 32 bits");
    _mm_storel_epi64(reinterpret_cast<__m128i *>(&point), _mm_cvttpd_epi32(quotients));
    return point;
#else
    return {truncate_i32(x / divisor), truncate_i32(y / divisor)};
#endif
}

// False for a segment without length.
static bool offset_line(Point p, Point q, f64 half_width, OffsetLine *line) {
    const f64 dx = static_cast<f64>(q.x) - static_cast<f64>(p.x);
    const f64 dy = static_cast<f64>(q.y) - static_cast<f64>(p.y);
    if (dx == 0.0 && dy == 0.0) {
        return false;
    }
    const f64 length = std::sqrt(dx * dx + dy * dy);
    const f64 c = static_cast<f64>(p.y) * dx - static_cast<f64>(p.x) * dy;
    *line = {dy, -dx, c + length * half_width, c - length * half_width};
    return true;
}

// The foot of the perpendicular from a point on a x + b y + c = 0.
static Point line_foot(f64 a, f64 b, f64 c, Point from) {
    const f64 k = a * static_cast<f64>(from.y) - b * static_cast<f64>(from.x);
    const f64 divisor = -a * a - b * b;
    return truncated_quotients(a * c + b * k, b * c - a * k, divisor);
}

// Where two lines with a determinant other than 0 meet.
static Point line_meet(const OffsetLine *one, f64 c1, const OffsetLine *two, f64 c2, f64 determinant) {
    return truncated_quotients(one->b * c2 - two->b * c1, two->a * c1 - one->a * c2, determinant);
}

Point point_extend(Point p, Point q, f64 distance) {
    const f64 ex = static_cast<f64>(p.x) - static_cast<f64>(q.x);
    const f64 ey = static_cast<f64>(p.y) - static_cast<f64>(q.y);
    const f64 length = std::sqrt(ex * ex + ey * ey);
    if (length == 0.0) {
        return p;
    }
    return {wrap_add(p.x, truncate_i32(ex * distance / length)),
            wrap_add(p.y, truncate_i32(ey * distance / length))};
}

// The point where an outline ends at `end`, whose neighbour on the centre line is `inner`.
static bool path_end(Point end, Point inner, f64 half_width, u16 path_type, Point *out) {
    if (path_type != 2) {
        *out = end;
        return true;
    }
    // The end's x is compared with both coordinates of its neighbour. Kept so on purpose: which paths
    // of a layout load depends on it.
    if (end.x == inner.x && end.x == inner.y) {
        return false;
    }
    *out = point_extend(end, inner, half_width);
    return true;
}

i32 path_to_polygon(Point *out, const Point *points, i32 count, u32 width, u16 path_type) {
    assert(out != nullptr && (points != nullptr || count <= 0));
    if (count < 2) {
        return 0;
    }
    const f64 half_width = static_cast<f64>(width) * 0.5;
    OffsetLine line;
    Point end;
    if (!offset_line(points[0], points[1], half_width, &line) ||
        !path_end(points[0], points[1], half_width, path_type, &end)) {
        return 0;
    }
    out[0] = line_foot(line.a, line.b, line.side_a, end);
    out[2 * count - 1] = line_foot(line.a, line.b, line.side_b, end);
    for (i32 i = 1; i < count - 1; ++i) {
        OffsetLine next;
        if (!offset_line(points[i], points[i + 1], half_width, &next)) {
            return 0;
        }
        const f64 determinant = line.a * next.b - next.a * line.b;
        if (determinant == 0.0) {
            return 0;
        }
        out[i] = line_meet(&line, line.side_a, &next, next.side_a, determinant);
        out[2 * count - 1 - i] = line_meet(&line, line.side_b, &next, next.side_b, determinant);
        line = next;
    }
    if (!path_end(points[count - 1], points[count - 2], half_width, path_type, &end)) {
        return 0;
    }
    out[count - 1] = line_foot(line.a, line.b, line.side_a, end);
    out[count] = line_foot(line.a, line.b, line.side_b, end);
    out[i64{2} * count] = out[0];
    return 1;
}
