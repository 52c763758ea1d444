// Rows (m) run outside, columns (n) inside throughout. The vertices of a grid point are numbered when
// the first triangle that needs them is made, so the mesh comes out packed in order of first use
// without a table over the whole grid: no triangle reaches beyond two rows.
#include "render/mesh.h"

#include <GL/glew.h>
#include <cassert>
#include <utility>
#include "platform/memory.h"
#include "platform/platform.h"
#include "render/top_normal.h"

static constexpr u32 UNUSED = 0xFFFFFFFFU;

// The numbers of the vertices of one grid row, UNUSED until they are needed.
struct RowVertices {
    u32 *bottom;
    u32 *top;
};

struct MeshBuilder {
    const Layer *layer;
    i64 grid_n, grid_m;
    MeshVertex *vertices;
    u32 *indices;
    u32 vertex_count;
    i64 index_count;
    RowVertices near_row, far_row;  // of the rows m and m + 1
};

// A nan thickness counts as present.
static u8 is_present(const Layer *layer, i64 point) {
    return static_cast<u8>(!(layer->top[point] - layer->bottom[point] == 0.0F));
}

static void fill_present(const Layer *layer, i64 row, u8 *present) {
    const i64 grid_n = layer->grid_n;
    const i64 start = row * grid_n;
    for (i64 n = 0; n < grid_n; ++n) {
        present[n] = is_present(layer, start + n);
    }
}

// How much a mesh takes: exact numbers, so that nothing is moved or copied while it grows.
struct MeshSize {
    i64 vertices;
    i64 indices;
};

// Adds the triangles over one row of grid quads and marks the points that they use.
static i64 count_quad_row(i64 grid_n, const u8 *near_present, const u8 *far_present, u8 *near_used,
                          u8 *far_used) {
    i64 triangles = 0;
    for (i64 n = 0; n + 1 < grid_n; ++n) {
        const u8 shared = static_cast<u8>(near_present[n + 1] | far_present[n]);
        const u8 a = static_cast<u8>(near_present[n] | shared);
        const u8 b = static_cast<u8>(far_present[n + 1] | shared);
        near_used[n] = static_cast<u8>(near_used[n] | a);
        near_used[n + 1] = static_cast<u8>(near_used[n + 1] | a | b);
        far_used[n] = static_cast<u8>(far_used[n] | a | b);
        far_used[n + 1] = static_cast<u8>(far_used[n + 1] | b);
        triangles += a + b;
    }
    return triangles;
}

static i64 count_marks(const u8 *marks, i64 count) {
    i64 sum = 0;
    for (i64 i = 0; i < count; ++i) {
        sum += marks[i];
    }
    return sum;
}

// The front face: two triangles and up to four vertices for each stretch of the first row.
static void count_front(i64 grid_n, const u8 *present, MeshSize *size) {
    u8 before = 0;
    for (i64 n = 0; n < grid_n; ++n) {
        const u8 after = n + 1 < grid_n ? static_cast<u8>(present[n] | present[n + 1]) : u8{0};
        size->vertices += (before | after) != 0 ? 2 : 0;
        size->indices += after != 0 ? 6 : 0;
        before = after;
    }
}

static MeshSize mesh_size(const Layer *layer) {
    const i64 grid_n = layer->grid_n;
    const i64 grid_m = layer->grid_m;
    MeshSize size = {0, 0};
    const Owned<u8[]> rows = memory_scratch_zeroed<u8>(4 * grid_n);
    u8 *near_present = rows.get();
    u8 *far_present = near_present + grid_n;
    u8 *near_used = near_present + 2 * grid_n;
    u8 *far_used = near_present + 3 * grid_n;
    if (grid_m > 0) {
        fill_present(layer, 0, near_present);
        count_front(grid_n, near_present, &size);
    }
    for (i64 m = 0; m + 1 < grid_m; ++m) {
        fill_present(layer, m + 1, far_present);
        size.indices += 6 * count_quad_row(grid_n, near_present, far_present, near_used, far_used);
        size.vertices += 2 * count_marks(near_used, grid_n);
        for (i64 n = 0; n < grid_n; ++n) {
            near_used[n] = 0;
        }
        std::swap(near_present, far_present);
        std::swap(near_used, far_used);
    }
    size.vertices += 2 * count_marks(near_used, grid_n);
    return size;
}

// The number of the vertex that is written. The arrays may lie in memory that is slow to read, so a
// vertex is only ever written.
static u32 append_vertex(MeshBuilder *builder, i64 n, i64 m, const f32 *heights, Normal normal) {
    const f32 spacing = builder->layer->spacing;
    builder->vertices[builder->vertex_count] = {
        {static_cast<f32>(n) * spacing, static_cast<f32>(m) * spacing, heights[m * builder->grid_n + n]},
        {normal.x, normal.y, normal.z}};
    return builder->vertex_count++;
}

// Bottom vertices have no normal.
static u32 bottom_vertex(MeshBuilder *builder, u32 *slot, i64 n, i64 m) {
    if (*slot == UNUSED) {
        *slot = append_vertex(builder, n, m, builder->layer->bottom, {0.0F, 0.0F, 0.0F});
    }
    return *slot;
}

static u32 top_vertex(MeshBuilder *builder, u32 *slot, i64 n, i64 m) {
    if (*slot == UNUSED) {
        *slot = append_vertex(builder, n, m, builder->layer->top, layer_top_normal(builder->layer, n, m));
    }
    return *slot;
}

// The triangles A (near left, near right, far left) and B (near right, far right, far left) of a quad,
// each first at the bottom, then at the top.
static void append_quad_a(MeshBuilder *builder, i64 n, i64 m) {
    const RowVertices near_row = builder->near_row;
    const RowVertices far_row = builder->far_row;
    u32 *out = builder->indices + builder->index_count;
    out[0] = bottom_vertex(builder, &near_row.bottom[n], n, m);
    out[1] = bottom_vertex(builder, &near_row.bottom[n + 1], n + 1, m);
    out[2] = bottom_vertex(builder, &far_row.bottom[n], n, m + 1);
    out[3] = top_vertex(builder, &near_row.top[n], n, m);
    out[4] = top_vertex(builder, &near_row.top[n + 1], n + 1, m);
    out[5] = top_vertex(builder, &far_row.top[n], n, m + 1);
    builder->index_count += 6;
}

static void append_quad_b(MeshBuilder *builder, i64 n, i64 m) {
    const RowVertices near_row = builder->near_row;
    const RowVertices far_row = builder->far_row;
    u32 *out = builder->indices + builder->index_count;
    out[0] = bottom_vertex(builder, &near_row.bottom[n + 1], n + 1, m);
    out[1] = bottom_vertex(builder, &far_row.bottom[n + 1], n + 1, m + 1);
    out[2] = bottom_vertex(builder, &far_row.bottom[n], n, m + 1);
    out[3] = top_vertex(builder, &near_row.top[n + 1], n + 1, m);
    out[4] = top_vertex(builder, &far_row.top[n + 1], n + 1, m + 1);
    out[5] = top_vertex(builder, &far_row.top[n], n, m + 1);
    builder->index_count += 6;
}

static void clear_row(RowVertices row, i64 grid_n) {
    for (i64 n = 0; n < grid_n; ++n) {
        row.bottom[n] = UNUSED;
        row.top[n] = UNUSED;
    }
}

static void append_surfaces(MeshBuilder *builder) {
    const i64 grid_n = builder->grid_n;
    const Owned<u8[]> present = memory_scratch<u8>(2 * grid_n);
    u8 *near_present = present.get();
    u8 *far_present = near_present + grid_n;
    fill_present(builder->layer, 0, near_present);
    clear_row(builder->near_row, grid_n);
    for (i64 m = 0; m + 1 < builder->grid_m; ++m) {
        fill_present(builder->layer, m + 1, far_present);
        clear_row(builder->far_row, grid_n);
        for (i64 n = 0; n + 1 < grid_n; ++n) {
            const i32 shared = near_present[n + 1] | far_present[n];
            if ((near_present[n] | shared) != 0) {
                append_quad_a(builder, n, m);
            }
            if ((far_present[n + 1] | shared) != 0) {
                append_quad_b(builder, n, m);
            }
        }
        std::swap(near_present, far_present);
        std::swap(builder->near_row, builder->far_row);
    }
}

static u32 front_vertex(MeshBuilder *builder, u32 *slot, i64 n, const f32 *heights) {
    if (*slot == UNUSED) {
        *slot = append_vertex(builder, n, 0, heights, {0.0F, -1.0F, 0.0F});
    }
    return *slot;
}

static void append_front(MeshBuilder *builder) {
    const Layer *layer = builder->layer;
    const RowVertices row = builder->near_row;
    clear_row(row, builder->grid_n);
    for (i64 n = 0; n + 1 < builder->grid_n; ++n) {
        if ((is_present(layer, n) | is_present(layer, n + 1)) == 0) {
            continue;
        }
        u32 *out = builder->indices + builder->index_count;
        out[0] = front_vertex(builder, &row.bottom[n], n, layer->bottom);
        out[1] = front_vertex(builder, &row.top[n + 1], n + 1, layer->top);
        out[2] = front_vertex(builder, &row.top[n], n, layer->top);
        out[3] = out[0];
        out[4] = front_vertex(builder, &row.bottom[n + 1], n + 1, layer->bottom);
        out[5] = out[1];
        builder->index_count += 6;
    }
}

// Fills a mesh whose arrays have the size that mesh_size tells.
static void mesh_fill(const Layer *layer, MeshVertex *vertices, u32 *indices) {
    const i64 grid_n = layer->grid_n;
    const Owned<u32[]> scratch = memory_scratch<u32>(4 * grid_n);
    u32 *numbers = scratch.get();
    MeshBuilder builder = {};
    builder.layer = layer;
    builder.grid_n = grid_n;
    builder.grid_m = layer->grid_m;
    builder.vertices = vertices;
    builder.indices = indices;
    builder.near_row = {numbers, numbers + grid_n};
    builder.far_row = {numbers + 2 * grid_n, numbers + 3 * grid_n};
    append_surfaces(&builder);
    append_front(&builder);
}

LayerMesh layer_mesh_create(const Layer *layer) {
    assert(layer != nullptr && layer->grid_n > 0 && layer->grid_m > 0 && layer->spacing > 0.0F);
    const MeshSize size = mesh_size(layer);
    LayerMesh mesh;
    mesh.vertices = memory_scratch<MeshVertex>(size.vertices);
    mesh.vertex_count = size.vertices;
    mesh.indices = memory_scratch<u32>(size.indices);
    mesh.index_count = size.indices;
    if (size.indices > 0) {
        mesh_fill(layer, mesh.vertices.get(), mesh.indices.get());
    }
    return mesh;
}

static void buffer_load(u32 target, i64 count, size_t item_size, const void *items) {
    glBufferData(target, static_cast<GLsizeiptr>(count) * static_cast<GLsizeiptr>(item_size), items,
                 GL_DYNAMIC_DRAW);
}

void layer_load_mesh(Layer *layer, const LayerMesh *mesh) {
    assert(layer != nullptr && mesh != nullptr && platform_gl_is_current());
    glBindBuffer(GL_ARRAY_BUFFER, layer->vbo);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, layer->ebo);
    buffer_load(GL_ARRAY_BUFFER, mesh->vertex_count, sizeof(MeshVertex), mesh->vertices.get());
    buffer_load(GL_ELEMENT_ARRAY_BUFFER, mesh->index_count, sizeof(u32), mesh->indices.get());
    layer->index_count = static_cast<i32>(mesh->index_count);
}

// Makes the mesh in the bound buffers' own memory. False when the driver does not lend it, or lost it.
static bool fill_buffers(const Layer *layer) {
    void *vertices = glMapBuffer(GL_ARRAY_BUFFER, GL_WRITE_ONLY);
    void *indices = glMapBuffer(GL_ELEMENT_ARRAY_BUFFER, GL_WRITE_ONLY);
    const bool lent = vertices != nullptr && indices != nullptr;
    if (lent) {
        mesh_fill(layer, static_cast<MeshVertex *>(vertices), static_cast<u32 *>(indices));
    }
    const bool vertices_kept = vertices != nullptr && glUnmapBuffer(GL_ARRAY_BUFFER) == GL_TRUE;
    const bool indices_kept = indices != nullptr && glUnmapBuffer(GL_ELEMENT_ARRAY_BUFFER) == GL_TRUE;
    return lent && vertices_kept && indices_kept;
}

void layer_build_mesh(Layer *layer) {
    assert(layer != nullptr && layer->vbo != 0 && layer->ebo != 0 && platform_gl_is_current());
    const MeshSize size = mesh_size(layer);
    glBindBuffer(GL_ARRAY_BUFFER, layer->vbo);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, layer->ebo);
    buffer_load(GL_ARRAY_BUFFER, size.vertices, sizeof(MeshVertex), nullptr);
    buffer_load(GL_ELEMENT_ARRAY_BUFFER, size.indices, sizeof(u32), nullptr);
    if (size.indices > 0 && !fill_buffers(layer)) {
        const LayerMesh mesh = layer_mesh_create(layer);
        buffer_load(GL_ARRAY_BUFFER, mesh.vertex_count, sizeof(MeshVertex), mesh.vertices.get());
        buffer_load(GL_ELEMENT_ARRAY_BUFFER, mesh.index_count, sizeof(u32), mesh.indices.get());
    }
    layer->index_count = static_cast<i32>(size.indices);
    layer->under_count = -1;
    layer->last_wins = 0;
}
