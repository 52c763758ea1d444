// Rows (m) run outside, columns (n) inside throughout.
#include "export/solid_mesh.h"

#include <cassert>
#include <cstring>

#include "export/solid_builder.h"

static constexpr i64 FIRST_CAPACITY = 4096;

// Parts of the way from an edge to the opposite corner: where a slit ends. A thousandth of the spacing is a
// few steps of f32 at the far end of the largest grid.
static constexpr f64 SLIT = 1.0 / 1024.0;

u32 solid_append_vertex(SolidBuilder *builder, SolidVertex vertex) {
    SolidMesh *mesh = builder->mesh;
    if (mesh->vertex_count == mesh->vertex_capacity) {
        mesh->vertex_capacity *= 2;
        mesh->vertices.reset(static_cast<SolidVertex *>(
            memory_reallocate(mesh->vertices.release(), mesh->vertex_capacity, sizeof(SolidVertex))));
    }
    mesh->vertices[mesh->vertex_count] = vertex;
    return static_cast<u32>(mesh->vertex_count++);
}

void solid_append_triangle(SolidBuilder *builder, u32 a, u32 b, u32 c) {
    SolidMesh *mesh = builder->mesh;
    if (mesh->index_count + 3 > mesh->index_capacity) {
        mesh->index_capacity *= 2;
        mesh->indices.reset(static_cast<u32 *>(
            memory_reallocate(mesh->indices.release(), mesh->index_capacity, sizeof(u32))));
    }
    u32 *out = mesh->indices.get() + mesh->index_count;
    out[0] = a;
    out[1] = b;
    out[2] = c;
    mesh->index_count += 3;
}

// A spacing rounded to 13 binary digits, whose multiples up to 2047 have no more than the 24 of an f32. One
// at the ends of what f32 can hold stays as it is.
static f32 round_step(f32 spacing) {
    u32 bits = 0;
    std::memcpy(&bits, &spacing, sizeof(bits));
    bits = (bits + 0x400U) & ~0x7FFU;
    f32 step = 0.0F;
    std::memcpy(&step, &bits, sizeof(step));
    return spacing >= F32_MIN_NORMAL && step <= F32_MAX ? step : spacing;
}

// The place of a point at one of the film's surfaces.
static SolidVertex place_of(const SolidBuilder *builder, const f32 *heights, i64 point) {
    const auto number = static_cast<u32>(point);  // which divides faster
    const u32 m = number / static_cast<u32>(builder->film->grid_n);
    const u32 n = number - m * static_cast<u32>(builder->film->grid_n);
    return {static_cast<f32>(n) * builder->step, static_cast<f32>(m) * builder->step, heights[point]};
}

static u32 vertex_of(SolidBuilder *builder, SolidSurface *surface, i64 point) {
    u32 *slot = &surface->numbers[point];
    if (*slot == SOLID_UNUSED) {
        *slot = solid_append_vertex(builder, place_of(builder, surface->heights, point));
    }
    return *slot;
}

u32 solid_underside_vertex(SolidBuilder *builder, i64 point) {
    return vertex_of(builder, &builder->underside, point);
}

u32 solid_top_vertex(SolidBuilder *builder, i64 point) {
    SolidSurface *surface = builder->film->there[point] != 0 ? &builder->top : &builder->underside;
    return vertex_of(builder, surface, point);
}

// A triangle of the grid, counter-clockwise from above, and the corner of its neighbour beyond the side that
// faces each of its own corners; -1 beyond the edge of the grid.
struct SolidTriangle {
    i64 corners[3];
    i64 beyond[3];
};

static SolidTriangle triangle_a(const SolidFilm *film, i64 n, i64 m) {
    const i64 grid_n = film->grid_n;
    const i64 point = m * grid_n + n;
    return {{point, point + 1, point + grid_n},
            {point + grid_n + 1, n > 0 ? point + grid_n - 1 : -1, m > 0 ? point - grid_n + 1 : -1}};
}

static SolidTriangle triangle_b(const SolidFilm *film, i64 n, i64 m) {
    const i64 grid_n = film->grid_n;
    const i64 point = m * grid_n + n;
    return {{point + 1, point + grid_n + 1, point + grid_n},
            {m + 2 < film->grid_m ? point + 2 * grid_n : -1, point, n + 2 < grid_n ? point + 2 : -1}};
}

// Which corner of a triangle is the only one where the film is, while it is also there beyond the opposite
// side; -1 where that is not so.
static i32 corner_before_slit(const SolidFilm *film, const SolidTriangle *triangle) {
    i32 count = 0;
    i32 corner = -1;
    for (i32 i = 0; i < 3; ++i) {
        if (film->there[triangle->corners[i]] != 0) {
            ++count;
            corner = i;
        }
    }
    const bool slit =
        count == 1 && triangle->beyond[corner] >= 0 && film->there[triangle->beyond[corner]] != 0;
    return slit ? corner : -1;
}

// The end of a slit: the place between a and b, a little towards c.
static SolidVertex slit_place(SolidVertex a, SolidVertex b, SolidVertex c) {
    const auto mix = [](f32 from, f32 to, f32 towards) {
        const f64 middle = 0.5 * (f64{from} + f64{to});
        return static_cast<f32>(middle + SLIT * (f64{towards} - middle));
    };
    return {mix(a.x, b.x, c.x), mix(a.y, b.y, c.y), mix(a.z, b.z, c.z)};
}

// A triangle that ends in a slit: both surfaces in two halves, and the wall between them.
static void append_before_slit(SolidBuilder *builder, const SolidTriangle *triangle, i32 corner) {
    const SolidFilm *film = builder->film;
    const i64 point_c = triangle->corners[corner];
    const i64 point_a = triangle->corners[(corner + 1) % 3];
    const i64 point_b = triangle->corners[(corner + 2) % 3];
    const f32 *bottom = film->bottom.get();
    const SolidVertex place_a = place_of(builder, bottom, point_a);
    const SolidVertex place_b = place_of(builder, bottom, point_b);
    const SolidVertex low_place = slit_place(place_a, place_b, place_of(builder, bottom, point_c));
    const SolidVertex high_place = slit_place(place_a, place_b, place_of(builder, film->top.get(), point_c));
    const bool has_wall = high_place.z > low_place.z;
    const u32 low = solid_append_vertex(builder, low_place);
    const u32 high = has_wall ? solid_append_vertex(builder, high_place) : low;
    const u32 a = solid_underside_vertex(builder, point_a);
    const u32 b = solid_underside_vertex(builder, point_b);
    const u32 c_low = solid_underside_vertex(builder, point_c);
    const u32 c_high = solid_top_vertex(builder, point_c);
    solid_append_triangle(builder, c_high, a, high);
    solid_append_triangle(builder, c_high, high, b);
    solid_append_triangle(builder, c_low, low, a);
    solid_append_triangle(builder, c_low, b, low);
    if (has_wall) {
        solid_append_triangle(builder, a, low, high);
        solid_append_triangle(builder, low, b, high);
    }
}

static void append_grid_triangle(SolidBuilder *builder, const SolidTriangle *triangle) {
    const SolidFilm *film = builder->film;
    const i64 *points = triangle->corners;
    if ((film->there[points[0]] | film->there[points[1]] | film->there[points[2]]) == 0) {
        return;
    }
    const i32 corner = corner_before_slit(film, triangle);
    if (corner >= 0) {
        append_before_slit(builder, triangle, corner);
        return;
    }
    solid_append_triangle(builder, solid_top_vertex(builder, points[0]), solid_top_vertex(builder, points[1]),
                          solid_top_vertex(builder, points[2]));
    solid_append_triangle(builder, solid_underside_vertex(builder, points[0]),
                          solid_underside_vertex(builder, points[2]),
                          solid_underside_vertex(builder, points[1]));
}

// The two triangles of a quad at whose corners the film is there.
static void append_whole_quad(SolidBuilder *builder, i64 quad, bool with_top, bool with_underside) {
    const i64 behind = quad + builder->film->grid_n;
    if (with_top) {
        SolidSurface *top = &builder->top;
        const u32 right = vertex_of(builder, top, quad + 1);
        const u32 left_behind = vertex_of(builder, top, behind);
        solid_append_triangle(builder, vertex_of(builder, top, quad), right, left_behind);
        solid_append_triangle(builder, right, vertex_of(builder, top, behind + 1), left_behind);
    }
    if (with_underside) {
        SolidSurface *underside = &builder->underside;
        const u32 right = vertex_of(builder, underside, quad + 1);
        const u32 left_behind = vertex_of(builder, underside, behind);
        solid_append_triangle(builder, vertex_of(builder, underside, quad), left_behind, right);
        solid_append_triangle(builder, right, left_behind, vertex_of(builder, underside, behind + 1));
    }
}

static void append_quads(SolidBuilder *builder) {
    const SolidFilm *film = builder->film;
    const i64 grid_n = film->grid_n;
    for (i64 m = 0; m + 1 < film->grid_m; ++m) {
        const u8 *near_row = film->there.get() + m * grid_n;
        const u8 *far_row = near_row + grid_n;
        for (i64 n = 0; n + 1 < grid_n; ++n) {
            const i32 corners = near_row[n] + near_row[n + 1] + far_row[n] + far_row[n + 1];
            const i64 quad = m * grid_n + n;
            if (corners == 4) {
                append_whole_quad(builder, quad, (builder->top.marks[quad] & SOLID_MERGED) == 0,
                                  (builder->underside.marks[quad] & SOLID_MERGED) == 0);
            } else if (corners > 0) {  // no block has a quad where the film ends
                const SolidTriangle a = triangle_a(film, n, m);
                const SolidTriangle b = triangle_b(film, n, m);
                append_grid_triangle(builder, &a);
                append_grid_triangle(builder, &b);
            }
        }
    }
}

// A triangle of a block, counter-clockwise from above.
static void append_level(SolidBuilder *builder, const SolidSurface *surface, u32 a, u32 b, u32 c) {
    const bool is_top = surface == &builder->top;
    solid_append_triangle(builder, a, is_top ? b : c, is_top ? c : b);
}

// Two triangles, or a fan around the middle where the border has more points than the corners.
static void append_block(SolidBuilder *builder, SolidSurface *surface, const LevelBlock *block) {
    i64 border[MOST_BORDER_POINTS];
    const i32 count = level_block_border(&surface->blocks, block, border);
    u32 numbers[MOST_BORDER_POINTS];
    for (i32 i = 0; i < count; ++i) {
        numbers[i] = vertex_of(builder, surface, border[i]);
    }
    if (count == 4) {
        append_level(builder, surface, numbers[0], numbers[1], numbers[3]);
        append_level(builder, surface, numbers[1], numbers[2], numbers[3]);
        return;
    }
    const i64 half = block->size / 2;
    const u32 middle =
        vertex_of(builder, surface, (block->m + half) * builder->film->grid_n + block->n + half);
    for (i32 i = 0; i < count; ++i) {
        append_level(builder, surface, middle, numbers[i], numbers[i + 1 < count ? i + 1 : 0]);
    }
}

static void append_blocks(SolidBuilder *builder, SolidSurface *surface) {
    LevelBlocks blocks = {};
    level_blocks_find(&surface->blocks, &blocks);
    const Owned<LevelBlock[]> owner(blocks.items);
    for (i32 i = 0; i < blocks.count; ++i) {
        append_block(builder, surface, &blocks.items[i]);
    }
}

static void mark_level(const SolidFilm *film, SolidSurface *surface) {
    const i64 grid_n = film->grid_n;
    for (i64 m = 0; m + 1 < film->grid_m; ++m) {
        const u8 *near_there = film->there.get() + m * grid_n;
        const u8 *far_there = near_there + grid_n;
        const f32 *near_row = surface->heights + m * grid_n;
        const f32 *far_row = near_row + grid_n;
        u8 *marks = surface->marks.get() + m * grid_n;
        for (i64 n = 0; n + 1 < grid_n; ++n) {
            const i32 whole = near_there[n] & near_there[n + 1] & far_there[n] & far_there[n + 1];
            const i32 level = static_cast<i32>(near_row[n] == near_row[n + 1]) &
                              static_cast<i32>(near_row[n] == far_row[n]) &
                              static_cast<i32>(near_row[n] == far_row[n + 1]);
            marks[n] = static_cast<u8>((whole & level) * SOLID_LEVEL);
        }
    }
}

static SolidSurface surface_create(const SolidFilm *film, const f32 *heights) {
    const i64 count = i64{film->grid_n} * film->grid_m;
    SolidSurface surface = {heights, {}, memory_scratch_zeroed<u8>(count), memory_scratch<u32>(count)};
    surface.blocks = {film->grid_n, film->grid_m, surface.marks.get(),
                      SOLID_LEVEL,  SOLID_MERGED, SOLID_CORNER};
    std::memset(surface.numbers.get(), 0xFF, static_cast<size_t>(count) * sizeof(u32));
    mark_level(film, &surface);
    return surface;
}

static void find_box(SolidMesh *mesh) {
    SolidVertex low = mesh->vertices[0];
    SolidVertex high = low;
    for (i64 i = 1; i < mesh->vertex_count; ++i) {
        const SolidVertex vertex = mesh->vertices[i];
        low.x = vertex.x < low.x ? vertex.x : low.x;
        low.y = vertex.y < low.y ? vertex.y : low.y;
        low.z = vertex.z < low.z ? vertex.z : low.z;
        high.x = vertex.x > high.x ? vertex.x : high.x;
        high.y = vertex.y > high.y ? vertex.y : high.y;
        high.z = vertex.z > high.z ? vertex.z : high.z;
    }
    mesh->low = low;
    mesh->high = high;
}

void solid_mesh_make(const SolidFilm *film, SolidMesh *mesh) {
    assert(film != nullptr && film->spacing > 0.0F && mesh != nullptr);
    assert(i64{film->grid_n} * film->grid_m < I32_MAX);
    mesh->vertex_count = mesh->index_count = 0;
    mesh->low = mesh->high = {};
    const f32 step = round_step(film->spacing);
    const i32 most = film->grid_n > film->grid_m ? film->grid_n : film->grid_m;
    const bool has_places = static_cast<f32>(most) * step <= F32_MAX;
    if (film->there_count == 0 || film->grid_n < 2 || film->grid_m < 2 || !has_places) {
        return;
    }
    if (mesh->vertices == nullptr) {
        mesh->vertex_capacity = mesh->index_capacity = FIRST_CAPACITY;
        mesh->vertices = memory_scratch<SolidVertex>(FIRST_CAPACITY);
        mesh->indices = memory_scratch<u32>(FIRST_CAPACITY);
    }
    mesh->stretch = f64{film->spacing} / f64{step};
    SolidBuilder builder = {film, mesh, step, surface_create(film, film->top.get()),
                            surface_create(film, film->bottom.get())};
    solid_sides_mark(&builder);
    append_blocks(&builder, &builder.top);
    append_blocks(&builder, &builder.underside);
    append_quads(&builder);
    solid_sides_append(&builder);
    find_box(mesh);
}

SolidVertex solid_place(const SolidMesh *mesh, SolidVertex vertex) {
    return {static_cast<f32>(f64{vertex.x} * mesh->stretch), static_cast<f32>(f64{vertex.y} * mesh->stretch),
            vertex.z};
}

f64 solid_mesh_volume(const SolidMesh *mesh) {
    assert(mesh != nullptr);
    const f64 low[3] = {f64{mesh->low.x}, f64{mesh->low.y}, f64{mesh->low.z}};
    f64 sum = 0.0;
    for (i64 i = 0; i < mesh->index_count; i += 3) {
        f64 at[3][3];
        for (i64 k = 0; k < 3; ++k) {
            const SolidVertex vertex = mesh->vertices[mesh->indices[i + k]];
            at[k][0] = f64{vertex.x} - low[0];
            at[k][1] = f64{vertex.y} - low[1];
            at[k][2] = f64{vertex.z} - low[2];
        }
        sum += at[0][0] * (at[1][1] * at[2][2] - at[1][2] * at[2][1]) +
               at[0][1] * (at[1][2] * at[2][0] - at[1][0] * at[2][2]) +
               at[0][2] * (at[1][0] * at[2][1] - at[1][1] * at[2][0]);
    }
    return sum / 6.0 * mesh->stretch * mesh->stretch;
}
