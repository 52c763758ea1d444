#include "render/fine_ends.h"

#include <cassert>

static constexpr u32 UNUSED = 0xFFFFFFFFU;  // as a FineEdge has it

// A triangle of the grid, and the surface of it that is appended.
struct EndTriangle {
    i64 quad;
    bool is_top, is_b;
};

// A corner of what is filled of a triangle.
struct EndCorner {
    f32 column, row;
    f32 low, high;  // of the film
    f32 beyond;     // half-way: the height on the other side of the edge
    i64 point;      // of the grid that it lies on; -1 half-way to the next one
    i64 here;       // the grid point on this side of the edge
    i64 there;      // the one on the other side
};

// What is filled of a triangle on one side of an edge, counter-clockwise from above.
struct EndPart {
    EndCorner corners[4];
    i32 count;
    i32 wall;  // the corner from which the edge goes to the next one
    bool is_straight;
};

static EndCorner grid_corner(const FineBuilder *builder, i64 point) {
    const SettledFilm *film = &builder->mesher->film;
    const i64 column = point % builder->stack->grid_n;
    const i64 row = point / builder->stack->grid_n;
    return {static_cast<f32>(column),
            static_cast<f32>(row),
            film->bottom[point],
            film->top[point],
            film->bottom[point],
            point,
            point,
            point};
}

static EndCorner middle_corner(const FineBuilder *builder, i64 here, i64 there) {
    EndCorner corner = grid_corner(builder, here);
    const EndCorner other = grid_corner(builder, there);
    corner.column = (corner.column + other.column) * 0.5F;
    corner.row = (corner.row + other.row) * 0.5F;
    corner.point = -1;
    corner.there = there;
    return corner;
}

// Where the film ends between two points: half-way, or at the second one.
static EndCorner end_corner(FineBuilder *builder, i64 here, i64 there, bool *is_straight) {
    const CutEdge edge = fine_builder_edge(builder, here, there)->cut;
    if (edge.kind == CUT_EDGE_END) {
        EndCorner corner = middle_corner(builder, here, there);
        corner.low = corner.beyond = edge.low;
        corner.high = edge.high;
        *is_straight = true;
        return corner;
    }
    EndCorner corner = grid_corner(builder, there);
    corner.low = corner.beyond = corner.high;
    corner.here = here;
    return corner;
}

// How the film ends in a triangle. Not straight where it does not end.
static EndPart find_end(FineBuilder *builder, const i64 points[3]) {
    EndPart end = {};
    for (i32 i = 0; i < 3; ++i) {
        const i64 one = points[i];
        const i64 two = points[i < 2 ? i + 1 : 0];
        const bool is_one = fine_builder_there(builder, one);
        const bool is_two = fine_builder_there(builder, two);
        if (is_one) {
            end.corners[end.count++] = grid_corner(builder, one);
        }
        if (is_one != is_two) {
            end.wall = is_one ? end.count : end.wall;
            end.corners[end.count++] =
                end_corner(builder, is_one ? one : two, is_one ? two : one, &end.is_straight);
        }
    }
    return end;
}

// Half-way between two points, where the film's top has a step. False where it has none.
static bool step_corner(FineBuilder *builder, i64 here, i64 there, EndCorner *corner) {
    const CutEdge edge = fine_builder_edge(builder, here, there)->cut;
    *corner = middle_corner(builder, here, there);
    corner->high = edge.high;
    corner->beyond = edge.behind;
    return edge.kind == CUT_EDGE_STEP;
}

// The two parts of a triangle whose top has a step: one corner, and the two others. False where it has none,
// or none that goes through the triangle.
static bool find_step(FineBuilder *builder, const i64 points[3], EndPart parts[2]) {
    for (i32 i = 0; i < 3; ++i) {
        const i64 one = points[i];
        const i64 next = points[(i + 1) % 3];
        const i64 last = points[(i + 2) % 3];
        EndPart *small = &parts[0];
        EndPart *large = &parts[1];
        EndCorner between = {};
        if (step_corner(builder, one, next, &small->corners[1]) &&
            step_corner(builder, one, last, &small->corners[2]) &&
            !step_corner(builder, next, last, &between)) {
            small->corners[0] = grid_corner(builder, one);
            small->count = 3;
            small->wall = 1;
            step_corner(builder, next, one, &large->corners[0]);
            large->corners[1] = grid_corner(builder, next);
            large->corners[2] = grid_corner(builder, last);
            step_corner(builder, last, one, &large->corners[3]);
            large->count = 4;
            large->wall = 3;
            return true;
        }
    }
    return false;
}

// Down from the film around a point.
static void add_way_down(const FineBuilder *builder, i64 point, f32 way[2]) {
    const i64 grid_n = builder->stack->grid_n;
    const i64 grid_m = builder->stack->grid_m;
    const i64 n = point % grid_n;
    const i64 m = point / grid_n;
    const f32 own = builder->mesher->film.top[point];
    for (i64 along = -1; along <= 1; ++along) {
        for (i64 across = -1; across <= 1; ++across) {
            const i64 x = n + across < 0 ? 0 : n + across < grid_n ? n + across : grid_n - 1;
            const i64 y = m + along < 0 ? 0 : m + along < grid_m ? m + along : grid_m - 1;
            const f32 weight = across * along == 0 ? 2.0F : 1.0F;
            const f32 rise = builder->mesher->film.top[y * grid_n + x] - own;
            way[0] -= static_cast<f32>(across) * weight * rise;
            way[1] -= static_cast<f32>(along) * weight * rise;
        }
    }
}

// A vertex of a wall. Its light goes by the films around it, so that a round wall is not made of flat pieces.
//   number   where it is kept for the triangles beside
//   way      level, out of the wall
static u32 wall_vertex(FineBuilder *builder, const EndCorner *corner, f32 height, u32 *number,
                       const f32 way[2]) {
    if (*number != UNUSED) {
        return *number;
    }
    const f32 spacing = builder->stack->spacing;
    f32 down[2] = {0.0F, 0.0F};
    add_way_down(builder, corner->here, down);
    add_way_down(builder, corner->there, down);
    const bool is_smooth = down[0] * way[0] + down[1] * way[1] > 0.0F;
    const MeshVertex vertex = {{corner->column * spacing, corner->row * spacing, height},
                               {is_smooth ? down[0] : way[0], is_smooth ? down[1] : way[1], 0.0F}};
    *number = fine_builder_vertex(builder, &vertex);
    return *number;
}

// A corner half-way has the light of the point beside it.
static u32 top_vertex(FineBuilder *builder, const EndCorner *corner) {
    if (corner->point >= 0) {
        return fine_builder_top(builder, corner->point);
    }
    const u32 beside = fine_builder_top(builder, corner->here);
    FineEdge *edge = fine_builder_edge(builder, corner->here, corner->there);
    if (edge->top == UNUSED) {
        const f32 spacing = builder->stack->spacing;
        MeshVertex vertex = builder->mesh.vertices[beside];
        vertex.position[0] = corner->column * spacing;
        vertex.position[1] = corner->row * spacing;
        vertex.position[2] = corner->high;
        edge->top = fine_builder_vertex(builder, &vertex);
    }
    return edge->top;
}

static u32 bottom_vertex(FineBuilder *builder, const EndCorner *corner) {
    if (corner->point >= 0) {
        return fine_builder_bottom(builder, corner->point);
    }
    const f32 spacing = builder->stack->spacing;
    const MeshVertex vertex = {{corner->column * spacing, corner->row * spacing, corner->low},
                               {0.0F, 0.0F, 0.0F}};
    return fine_builder_vertex(builder, &vertex);
}

// Whether the side of a triangle from which its corners go counter-clockwise turns away from the eye.
static bool faces_away(const FineBuilder *builder, const u32 numbers[3]) {
    const f32 *a = builder->mesh.vertices[numbers[0]].position;
    const f32 *b = builder->mesh.vertices[numbers[1]].position;
    const f32 *c = builder->mesh.vertices[numbers[2]].position;
    const FineEye eye = builder->mesher->eye;
    const f32 to_eye[3] = {eye.column * builder->stack->spacing - a[0], eye.y - a[1], eye.z - a[2]};
    const f32 u[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const f32 v[3] = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    return (u[1] * v[2] - u[2] * v[1]) * to_eye[0] + (u[2] * v[0] - u[0] * v[2]) * to_eye[1] +
               (u[0] * v[1] - u[1] * v[0]) * to_eye[2] <
           0.0F;
}

// A triangle of the top or of a wall, or of an underside as it is seen from above.
//   is_wall   the back of one that is solid is never seen
static void append_triangle(FineBuilder *builder, const EndTriangle *triangle, bool is_wall,
                            const u32 numbers[3]) {
    if (builder->order == nullptr && is_wall && faces_away(builder, numbers)) {
        return;
    }
    if (builder->order == nullptr) {
        fine_builder_indices(builder, numbers[0], numbers[1], numbers[2]);
        return;
    }
    const i64 grid_n = builder->stack->grid_n;
    const bool turned = faces_away(builder, numbers);
    if (triangle->is_top || turned) {
        const OrderedTriangle ordered = {
            fine_order_cell(grid_n, builder->stack->grid_m, triangle->quad % grid_n, triangle->quad / grid_n,
                            triangle->is_b, builder->mesher->eye.column),
            builder->film * 2 + (triangle->is_top ? 1 : 0),
            turned,
            triangle->is_top != turned,
            {numbers[0], numbers[1], numbers[2]}};
        fine_order_append(builder->order, &ordered);
    }
}

// The vertices of a wall at one of its sides.
struct WallSide {
    u32 low, high;
};

static WallSide wall_side(FineBuilder *builder, const EndCorner *corner, const f32 way[2]) {
    u32 own[2] = {UNUSED, UNUSED};
    const bool is_half_way = corner->point < 0;
    FineEdge *edge = is_half_way ? fine_builder_edge(builder, corner->here, corner->there) : nullptr;
    const f32 low = corner->high > corner->beyond ? corner->beyond : corner->high;
    const u32 first = wall_vertex(builder, corner, low, is_half_way ? &edge->low : &own[0], way);
    return {first, wall_vertex(builder, corner, corner->high, is_half_way ? &edge->high : &own[1], way)};
}

// The wall of a part, as far as it is higher than what is beyond.
static void append_wall(FineBuilder *builder, const EndTriangle *triangle, const EndPart *part) {
    const EndCorner *from = &part->corners[part->wall];
    const EndCorner *to = &part->corners[part->wall + 1 < part->count ? part->wall + 1 : 0];
    const f32 way[2] = {to->row - from->row, from->column - to->column};
    const bool is_from = from->high > from->beyond;
    const bool is_to = to->high > to->beyond;
    if (!is_from && !is_to) {
        return;
    }
    const WallSide left = wall_side(builder, from, way);
    const WallSide right = wall_side(builder, to, way);
    const u32 first[3] = {left.low, right.low, right.high};
    const u32 second[3] = {left.low, right.high, left.high};
    if (is_to) {
        append_triangle(builder, triangle, true, first);
    }
    if (is_from) {
        append_triangle(builder, triangle, true, second);
    }
}

// What is seen of a part. A level underside is never seen by the eye, which is above it.
static void append_part(FineBuilder *builder, const EndTriangle *triangle, const EndPart *part) {
    u32 numbers[4];
    bool is_level = true;
    for (i32 i = 0; i < part->count; ++i) {
        const EndCorner *corner = &part->corners[i];
        is_level = is_level && corner->low == part->corners[0].low;
        numbers[i] = triangle->is_top ? top_vertex(builder, corner) : bottom_vertex(builder, corner);
    }
    for (i32 i = 1; i + 1 < part->count && (triangle->is_top || !is_level); ++i) {
        const u32 fan[3] = {numbers[0], numbers[i], numbers[i + 1]};
        append_triangle(builder, triangle, false, fan);
    }
    if (triangle->is_top) {
        append_wall(builder, triangle, part);
    }
}

bool fine_ends_append(FineBuilder *builder, i64 point, bool is_top, bool is_b, const i64 points[3]) {
    assert(builder != nullptr && points != nullptr);
    const EndTriangle triangle = {point, is_top, is_b};
    const i32 count = (fine_builder_there(builder, points[0]) ? 1 : 0) +
                      (fine_builder_there(builder, points[1]) ? 1 : 0) +
                      (fine_builder_there(builder, points[2]) ? 1 : 0);
    if (count == 1 || count == 2) {
        const EndPart end = find_end(builder, points);
        if (end.is_straight) {
            append_part(builder, &triangle, &end);
        }
        return end.is_straight;
    }
    const u8 *parts = fine_section_parts(builder->mesher->section, builder->film);
    const f32 *top = builder->mesher->film.top.get();
    const bool is_level = top[points[0]] == top[points[1]] && top[points[1]] == top[points[2]];
    EndPart halves[2] = {};
    if (count == 3 && is_top && !is_level && (parts[point] & FINE_PART_STEP) != 0 &&
        find_step(builder, points, halves)) {
        append_part(builder, &triangle, &halves[0]);
        append_part(builder, &triangle, &halves[1]);
        return true;
    }
    return false;
}
