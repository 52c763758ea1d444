// Rows (m) run outside, columns (n) inside throughout.
#include "render/fine_mesh.h"

#include <cassert>
#include <cstring>
#include <utility>
#include "platform/memory.h"
#include "render/fine_ends.h"
#include "render/visible_parts.h"

static constexpr i64 FIRST_CAPACITY = 4096;

FineMesher fine_mesher_create(const FineSection *section, FineEye eye) {
    assert(section != nullptr);
    const Stack *stack = section->stack;
    const i64 count = stack_point_count(stack);
    Owned<FineEdge[]> kept = memory_scratch<FineEdge>(FINE_EDGES_KEPT);
    for (i64 i = 0; i < FINE_EDGES_KEPT; ++i) {
        kept[i].film = -1;
    }
    return {section,
            eye,
            settled_film_create(stack, stack->grid_m),
            film_floor_create(stack, stack->grid_m),
            cut_edges_create(stack, &section->face),
            std::move(kept),
            memory_scratch<u32>(count),
            memory_scratch<u32>(count),
            0};
}

// Whether the upper side of a triangle turns away from the eye: whether the eye lies below its plane.
//   heights   of its surface
//   corner    the point at its right angle; the two others lie `across` columns and `along` rows away from it
static bool is_turned(const FineBuilder *builder, const f32 *heights, i64 corner, i64 across, i64 along) {
    const i64 grid_n = builder->stack->grid_n;
    const f32 spacing = builder->stack->spacing;
    const FineEye eye = builder->mesher->eye;
    const f32 height = heights[corner];
    const f32 slope_x = (heights[corner + across] - height) * static_cast<f32>(across);
    const f32 slope_y = (heights[corner + along * grid_n] - height) * static_cast<f32>(along);
    const i64 n = corner % grid_n;
    const i64 m = corner / grid_n;
    const f32 columns = eye.column - static_cast<f32>(n);
    const f32 rows = eye.y / spacing - static_cast<f32>(m);
    return height + slope_x * columns + slope_y * rows > eye.z;
}

// One triangle of a translucent film's surface. Only those show by which a line of sight enters the film:
// each passage through it gives its colour once, and of the border between two such films one surface shows.
// A top that turns away counts in the order all the same.
static void append_ordered(FineBuilder *builder, i64 point, bool is_top, bool is_b, const i64 points[3]) {
    const i64 grid_n = builder->stack->grid_n;
    const SettledFilm *film = &builder->mesher->film;
    const f32 *heights = is_top ? film->top.get() : film->bottom.get();
    const i64 corner = is_b ? point + grid_n + 1 : point;
    const i64 side = is_b ? -1 : 1;
    const bool turned = is_turned(builder, heights, corner, side, side);
    if (!is_top && !turned) {
        return;
    }
    OrderedTriangle triangle = {fine_order_cell(grid_n, builder->stack->grid_m, point % grid_n,
                                                point / grid_n, is_b, builder->mesher->eye.column),
                                builder->film * 2 + (is_top ? 1 : 0),
                                turned,
                                is_top != turned,
                                {0, 0, 0}};
    for (i32 i = 0; i < 3 && triangle.is_shown; ++i) {
        triangle.vertices[i] =
            is_top ? fine_builder_top(builder, points[i]) : fine_builder_bottom(builder, points[i]);
    }
    fine_order_append(builder->order, &triangle);
}

// One triangle of a surface.
//   is_top    of the top or of the underside
//   is_b      triangle B of the quad or A
static void append_triangle(FineBuilder *builder, i64 point, bool is_top, bool is_b) {
    const i64 grid_n = builder->stack->grid_n;
    const i64 points[3] = {is_b ? point + 1 : point, is_b ? point + grid_n + 1 : point + 1, point + grid_n};
    if (fine_ends_append(builder, point, is_top, is_b, points)) {
        return;
    }
    if (builder->order != nullptr) {
        append_ordered(builder, point, is_top, is_b, points);
        return;
    }
    const f32 *bottom = builder->mesher->film.bottom.get();
    if (is_top) {
        fine_builder_indices(builder, fine_builder_top(builder, points[0]),
                             fine_builder_top(builder, points[1]), fine_builder_top(builder, points[2]));
    } else if (bottom[points[0]] != bottom[points[1]] || bottom[points[1]] != bottom[points[2]]) {
        fine_builder_indices(builder, fine_builder_bottom(builder, points[0]),
                             fine_builder_bottom(builder, points[1]),
                             fine_builder_bottom(builder, points[2]));  // the eye is above a level one
    }
}

static void append_quads(FineBuilder *builder, const u8 *parts) {
    constexpr u8 TRIANGLES = PART_TOP_A | PART_TOP_B | PART_UNDER_A | PART_UNDER_B;
    const i64 count = stack_point_count(builder->stack);
    for (i64 point = 0; point < count; ++point) {
        const u8 part = parts[point];
        if ((part & TRIANGLES) == 0) {
            continue;
        }
        const bool is_merged = (part & PART_MERGED) != 0;
        if ((part & PART_UNDER_A) != 0) {
            append_triangle(builder, point, false, false);
        }
        if ((part & PART_UNDER_B) != 0) {
            append_triangle(builder, point, false, true);
        }
        if ((part & PART_TOP_A) != 0 && !is_merged) {
            append_triangle(builder, point, true, false);
        }
        if ((part & PART_TOP_B) != 0 && !is_merged) {
            append_triangle(builder, point, true, true);
        }
    }
}

// Whether the light on a film's top is the same at a point of that height and all around it.
static bool is_level_around(const FineBuilder *builder, i64 point, f32 height) {
    const i64 grid_n = builder->stack->grid_n;
    for (i64 row = point - grid_n; row <= point + grid_n; row += grid_n) {
        if (fine_builder_lit(builder, row - 1) != height || fine_builder_lit(builder, row) != height ||
            fine_builder_lit(builder, row + 1) != height) {
            return false;
        }
    }
    return true;
}

// Marks the quads that may be joined to blocks. Those at the edge of the grid stay as they are, and with them
// the corners that the cut face has.
static void mark_level(const FineBuilder *builder, u8 *parts) {
    constexpr u8 WHOLE = PART_TOP_A | PART_TOP_B;
    const i64 grid_n = builder->stack->grid_n;
    const f32 *top = builder->mesher->film.top.get();
    for (i64 m = 1; m + 2 < builder->stack->grid_m; ++m) {
        for (i64 n = 1; n + 2 < grid_n; ++n) {
            const i64 point = m * grid_n + n;
            const f32 height = top[point];
            const bool is_whole = (parts[point] & WHOLE) == WHOLE && fine_builder_there(builder, point) &&
                                  fine_builder_there(builder, point + 1) &&
                                  fine_builder_there(builder, point + grid_n) &&
                                  fine_builder_there(builder, point + grid_n + 1);
            if (is_whole && top[point + 1] == height && top[point + grid_n] == height &&
                top[point + grid_n + 1] == height && is_level_around(builder, point, height) &&
                is_level_around(builder, point + 1, height) &&
                is_level_around(builder, point + grid_n, height) &&
                is_level_around(builder, point + grid_n + 1, height)) {
                parts[point] |= PART_LEVEL;
            }
        }
    }
}

// Two triangles, or a fan around the middle where the border has more points than the corners.
static void append_block(FineBuilder *builder, const LevelMarks *top, const LevelBlock *block) {
    const i64 grid_n = builder->stack->grid_n;
    i64 border[MOST_BORDER_POINTS];
    const i32 count = level_block_border(top, block, border);
    u32 numbers[MOST_BORDER_POINTS];
    for (i32 i = 0; i < count; ++i) {
        numbers[i] = fine_builder_top(builder, border[i]);
    }
    if (count == 4) {
        fine_builder_indices(builder, numbers[0], numbers[1], numbers[3]);
        fine_builder_indices(builder, numbers[1], numbers[2], numbers[3]);
        return;
    }
    const i64 half = block->size / 2;
    const u32 middle = fine_builder_top(builder, (block->m + half) * grid_n + block->n + half);
    for (i32 i = 0; i < count; ++i) {
        fine_builder_indices(builder, middle, numbers[i], numbers[i + 1 < count ? i + 1 : 0]);
    }
}

static void append_blocks(FineBuilder *builder, u8 *parts) {
    mark_level(builder, parts);
    LevelBlocks blocks = {};
    const LevelMarks top = part_level_marks(builder->stack->grid_n, builder->stack->grid_m, parts);
    level_blocks_find(&top, &blocks);
    const Owned<LevelBlock[]> owner(blocks.items);
    for (i32 i = 0; i < blocks.count; ++i) {
        append_block(builder, &top, &blocks.items[i]);
    }
}

static void append_front_triangle(FineBuilder *builder, const CutTriangle *triangle) {
    u32 numbers[3];
    for (i32 i = 0; i < 3; ++i) {
        const f32 x = triangle->column[i] * builder->stack->spacing;
        const MeshVertex vertex = {{x, 0.0F, triangle->height[i]}, {0.0F, -1.0F, 0.0F}};
        numbers[i] = fine_builder_vertex(builder, &vertex);
    }
    if (builder->order == nullptr) {
        fine_builder_indices(builder, numbers[0], numbers[1], numbers[2]);
        return;
    }
    const OrderedTriangle ordered = {
        FINE_CELL_FRONT, builder->film * 2, false, true, {numbers[0], numbers[1], numbers[2]}};
    fine_order_append(builder->order, &ordered);
}

static void append_front(FineBuilder *builder) {
    const CutFace *face = &builder->mesher->section->face;
    Owned<CutTriangle[]> triangles;
    i32 capacity = 0;
    for (i32 i = 0; i < face->piece_count; ++i) {
        if (face->pieces[i].film == builder->film) {
            i32 count = 0;
            cut_face_triangles(face, i, &triangles, &count, &capacity);
            for (i32 k = 0; k < count; ++k) {
                append_front_triangle(builder, &triangles[k]);
            }
        }
    }
}

LayerMesh fine_mesher_next(FineMesher *mesher, FineOrder *order) {
    assert(mesher != nullptr && order != nullptr && mesher->next < mesher->section->face.film_count);
    const FineSection *section = mesher->section;
    const i32 film = mesher->next++;
    const i32 slot = section->face.slots[film];
    const bool is_solid = fine_film_is_solid(section, film);
    film_settle(section->stack, slot, &mesher->floor, &mesher->film);
    const size_t size = static_cast<size_t>(stack_point_count(section->stack)) * sizeof(u32);
    std::memset(mesher->top_numbers.get(), 0xFF, size);
    std::memset(mesher->bottom_numbers.get(), 0xFF, size);
    FineBuilder builder = {mesher, section->stack, film, is_solid ? nullptr : order, {}, 0, 0};
    builder.vertex_capacity = builder.index_capacity = FIRST_CAPACITY;
    builder.mesh.vertices = memory_scratch<MeshVertex>(FIRST_CAPACITY);
    builder.mesh.indices = memory_scratch<u32>(FIRST_CAPACITY);
    u8 *parts = fine_section_parts(section, film);
    if (is_solid && section->stack->grid_n > 3 && section->stack->grid_m > 3) {
        append_blocks(&builder, parts);
    }
    append_quads(&builder, parts);
    append_front(&builder);
    film_floor_raise(slot, &mesher->film, &mesher->floor);
    return std::move(builder.mesh);
}
