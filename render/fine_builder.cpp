#include "render/fine_builder.h"

#include <cassert>
#include <cmath>
#include "platform/memory.h"

static constexpr u32 UNUSED = 0xFFFFFFFFU;

void fine_builder_indices(FineBuilder *builder, u32 a, u32 b, u32 c) {
    LayerMesh *mesh = &builder->mesh;
    if (mesh->index_count + 3 > builder->index_capacity) {
        builder->index_capacity *= 2;
        mesh->indices.reset(static_cast<u32 *>(
            memory_reallocate(mesh->indices.release(), builder->index_capacity, sizeof(u32))));
    }
    u32 *out = mesh->indices.get() + mesh->index_count;
    out[0] = a;
    out[1] = b;
    out[2] = c;
    mesh->index_count += 3;
}

u32 fine_builder_vertex(FineBuilder *builder, const MeshVertex *vertex) {
    LayerMesh *mesh = &builder->mesh;
    if (mesh->vertex_count == builder->vertex_capacity) {
        builder->vertex_capacity *= 2;
        mesh->vertices.reset(static_cast<MeshVertex *>(
            memory_reallocate(mesh->vertices.release(), builder->vertex_capacity, sizeof(MeshVertex))));
    }
    mesh->vertices[mesh->vertex_count] = *vertex;
    return static_cast<u32>(mesh->vertex_count++);
}

f32 fine_builder_lit(const FineBuilder *builder, i64 point) {
    const FineSection *section = builder->mesher->section;
    if ((section->inside[point] & FINE_HOLLOW) != 0) {
        return builder->mesher->film.top[point];
    }
    return builder->order == nullptr ? section->solid_surface[point] : section->surface[point];
}

FineEdge *fine_builder_edge(FineBuilder *builder, i64 one, i64 two) {
    const u64 key = static_cast<u64>(one) * 4 + static_cast<u64>(two % 4);
    FineEdge *edge = &builder->mesher->kept[static_cast<i64>(key % static_cast<u64>(FINE_EDGES_KEPT))];
    if (edge->film != builder->film || edge->one != one || edge->two != two) {
        *edge = {
            builder->film, one,    two,   cut_edges_find(&builder->mesher->edges, builder->film, one, two),
            UNUSED,        UNUSED, UNUSED};
    }
    return edge;
}

static MeshVertex point_vertex(const FineBuilder *builder, i64 point, f32 height) {
    const f32 spacing = builder->stack->spacing;
    const i64 n = point % builder->stack->grid_n;
    const i64 m = point / builder->stack->grid_n;
    const f32 x = static_cast<f32>(n) * spacing;
    const f32 y = static_cast<f32>(m) * spacing;
    return {{x, y, height}, {0.0F, 0.0F, 0.0F}};
}

bool fine_builder_there(const FineBuilder *builder, i64 point) {
    return (builder->mesher->film.presence[point] & FILM_THERE) != 0;
}

// The height beside a point that the light on the film's top goes by. A film that lies level with this one
// goes on with it, one that stands on it does not, and at a straight edge the top is level.
static f32 height_beside(FineBuilder *builder, i64 point, i64 beside) {
    const f32 own = builder->mesher->film.top[point];
    const f32 lit = fine_builder_lit(builder, beside);
    if (!fine_builder_there(builder, point) || lit == own) {
        return lit;
    }
    const bool is_beside = fine_builder_there(builder, beside);
    const f32 own_beside = builder->mesher->film.top[beside];
    const f32 height = is_beside && std::fabs(own_beside - own) < std::fabs(lit - own) ? own_beside : lit;
    if (is_beside && std::fabs(height - own) <= builder->stack->spacing) {
        return height;
    }
    return fine_builder_edge(builder, point, beside)->cut.kind == CUT_EDGE_OTHER ? height : own;
}

// The normal goes by the slopes from the neighbours before a point to those behind it.
u32 fine_builder_top(FineBuilder *builder, i64 point) {
    u32 *number = &builder->mesher->top_numbers[point];
    if (*number == UNUSED) {
        const i64 grid_n = builder->stack->grid_n;
        const i64 n = point % grid_n;
        const i64 m = point / grid_n;
        const i64 west = n > 0 ? 1 : 0;
        const i64 east = n + 1 < grid_n ? 1 : 0;
        const i64 south = m > 0 ? 1 : 0;
        const i64 north = m + 1 < builder->stack->grid_m ? 1 : 0;
        const f32 rise_across =
            height_beside(builder, point, point + east) - height_beside(builder, point, point - west);
        const f32 rise_along = height_beside(builder, point, point + north * grid_n) -
                               height_beside(builder, point, point - south * grid_n);
        const f32 across = rise_across / static_cast<f32>(east + west);
        const f32 along = rise_along / static_cast<f32>(north + south);
        MeshVertex vertex = point_vertex(builder, point, builder->mesher->film.top[point]);
        vertex.normal[0] = -across;
        vertex.normal[1] = -along;
        vertex.normal[2] = builder->stack->spacing;
        *number = fine_builder_vertex(builder, &vertex);
    }
    return *number;
}

u32 fine_builder_bottom(FineBuilder *builder, i64 point) {
    u32 *number = &builder->mesher->bottom_numbers[point];
    if (*number == UNUSED) {
        const MeshVertex vertex = point_vertex(builder, point, builder->mesher->film.bottom[point]);
        *number = fine_builder_vertex(builder, &vertex);
    }
    return *number;
}
