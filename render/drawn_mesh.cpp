#include "render/drawn_mesh.h"

#include <GL/glew.h>
#include <algorithm>
#include <cassert>
#include <cstring>
#include <utility>
#include "platform/memory.h"
#include "platform/platform.h"
#include "render/top_normal.h"
#include "render/visible_parts.h"

static constexpr u32 UNUSED = 0xFFFFFFFFU;
static constexpr i64 FIRST_CAPACITY = 4096;

// A mesh that grows, and the numbers of its vertices by grid point, UNUSED until they are there.
struct DrawnBuilder {
    const Layer *layer;
    i64 grid_n;
    LayerMesh mesh;
    i64 vertex_capacity, index_capacity;
    Owned<u32[]> top_numbers, bottom_numbers;
};

static void append_indices(DrawnBuilder *builder, u32 a, u32 b, u32 c) {
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

static u32 append_vertex(DrawnBuilder *builder, i64 n, i64 m, f32 height, Normal normal) {
    LayerMesh *mesh = &builder->mesh;
    if (mesh->vertex_count == builder->vertex_capacity) {
        builder->vertex_capacity *= 2;
        mesh->vertices.reset(static_cast<MeshVertex *>(
            memory_reallocate(mesh->vertices.release(), builder->vertex_capacity, sizeof(MeshVertex))));
    }
    const f32 spacing = builder->layer->spacing;
    mesh->vertices[mesh->vertex_count] = {
        {static_cast<f32>(n) * spacing, static_cast<f32>(m) * spacing, height},
        {normal.x, normal.y, normal.z}};
    return static_cast<u32>(mesh->vertex_count++);
}

static u32 top_vertex(DrawnBuilder *builder, i64 point) {
    u32 *slot = &builder->top_numbers[point];
    if (*slot == UNUSED) {
        const i64 n = point % builder->grid_n;
        const i64 m = point / builder->grid_n;
        const Layer *layer = builder->layer;
        *slot = append_vertex(builder, n, m, layer->top[point], layer_top_normal(layer, n, m));
    }
    return *slot;
}

static u32 bottom_vertex(DrawnBuilder *builder, i64 point) {
    u32 *slot = &builder->bottom_numbers[point];
    if (*slot == UNUSED) {
        *slot = append_vertex(builder, point % builder->grid_n, point / builder->grid_n,
                              builder->layer->bottom[point], {0.0F, 0.0F, 0.0F});
    }
    return *slot;
}

static Owned<u32[]> unused_numbers(const Layer *layer) {
    const i64 count = i64{layer->grid_n} * layer->grid_m;
    Owned<u32[]> numbers = memory_scratch<u32>(count);
    std::memset(numbers.get(), 0xFF, static_cast<size_t>(count) * sizeof(u32));
    return numbers;
}

// The triangles A and B of one quad, at the bottom first.
static void append_quad(DrawnBuilder *builder, i64 point, u8 part) {
    const i64 right = point + 1;
    const i64 behind = point + builder->grid_n;
    if ((part & (PART_UNDER_A | PART_UNDER_B)) != 0 && builder->bottom_numbers == nullptr) {
        builder->bottom_numbers = unused_numbers(builder->layer);
    }
    if ((part & PART_UNDER_A) != 0) {
        append_indices(builder, bottom_vertex(builder, point), bottom_vertex(builder, right),
                       bottom_vertex(builder, behind));
    }
    if ((part & PART_TOP_A) != 0) {
        append_indices(builder, top_vertex(builder, point), top_vertex(builder, right),
                       top_vertex(builder, behind));
    }
    if ((part & PART_UNDER_B) != 0) {
        append_indices(builder, bottom_vertex(builder, right), bottom_vertex(builder, behind + 1),
                       bottom_vertex(builder, behind));
    }
    if ((part & PART_TOP_B) != 0) {
        append_indices(builder, top_vertex(builder, right), top_vertex(builder, behind + 1),
                       top_vertex(builder, behind));
    }
}

static void append_quads(DrawnBuilder *builder, const u8 *parts) {
    constexpr u8 TRIANGLES = PART_TOP_A | PART_TOP_B | PART_UNDER_A | PART_UNDER_B;
    const i64 count = i64{builder->layer->grid_n} * builder->layer->grid_m;
    for (i64 point = 0; point < count; ++point) {
        const u8 part = parts[point];
        if ((part & PART_MERGED) != 0) {
            append_quad(builder, point, part & (PART_UNDER_A | PART_UNDER_B));
        } else if ((part & TRIANGLES) != 0) {
            append_quad(builder, point, part);
        }
    }
}

// Two triangles, or a fan around the middle where the border has more points than the corners.
static void append_block(DrawnBuilder *builder, const LevelMarks *top, const LevelBlock *block) {
    i64 border[MOST_BORDER_POINTS];
    const i32 count = level_block_border(top, block, border);
    u32 numbers[MOST_BORDER_POINTS];
    for (i32 i = 0; i < count; ++i) {
        numbers[i] = top_vertex(builder, border[i]);
    }
    if (count == 4) {
        append_indices(builder, numbers[0], numbers[1], numbers[3]);
        append_indices(builder, numbers[1], numbers[2], numbers[3]);
        return;
    }
    const i64 half = block->size / 2;
    const u32 middle = top_vertex(builder, (block->m + half) * builder->grid_n + block->n + half);
    for (i32 i = 0; i < count; ++i) {
        append_indices(builder, middle, numbers[i], numbers[i + 1 < count ? i + 1 : 0]);
    }
}

// The cut face along the first row.
static void append_front(DrawnBuilder *builder) {
    const Layer *layer = builder->layer;
    const Normal forward = {0.0F, -1.0F, 0.0F};
    u32 lower = 0;
    u32 upper = 0;
    bool joined = false;  // whether lower and upper are the vertices at n
    for (i64 n = 0; n + 1 < builder->grid_n; ++n) {
        const bool there = layer->top[n] != layer->bottom[n] || layer->top[n + 1] != layer->bottom[n + 1];
        if (there) {
            if (!joined) {
                lower = append_vertex(builder, n, 0, layer->bottom[n], forward);
                upper = append_vertex(builder, n, 0, layer->top[n], forward);
            }
            const u32 next_lower = append_vertex(builder, n + 1, 0, layer->bottom[n + 1], forward);
            const u32 next_upper = append_vertex(builder, n + 1, 0, layer->top[n + 1], forward);
            append_indices(builder, lower, next_upper, upper);
            append_indices(builder, lower, next_lower, next_upper);
            lower = next_lower;
            upper = next_upper;
        }
        joined = there;
    }
}

// The mesh of a layer that hides others, among the layers of its run.
//   source   receives the slots that the mesh depends on
static LayerMesh visible_mesh(const Stack *stack, i32 slot, SlotRun run, SlotRun *source) {
    DrawnBuilder builder = {};
    builder.layer = stack->layers[slot];
    builder.grid_n = builder.layer->grid_n;
    builder.vertex_capacity = builder.index_capacity = FIRST_CAPACITY;
    builder.mesh.vertices = memory_scratch<MeshVertex>(FIRST_CAPACITY);
    builder.mesh.indices = memory_scratch<u32>(FIRST_CAPACITY);
    builder.top_numbers = unused_numbers(builder.layer);
    const Owned<u8[]> parts = memory_scratch<u8>(builder.grid_n * builder.layer->grid_m);
    *source = visible_parts_find(stack, slot, run, parts.get());
    LevelBlocks blocks = {};
    const LevelMarks top = part_level_marks(stack->grid_n, stack->grid_m, parts.get());
    level_blocks_find(&top, &blocks);
    const Owned<LevelBlock[]> owner(blocks.items);
    for (i32 i = 0; i < blocks.count; ++i) {
        append_block(&builder, &top, &blocks.items[i]);
    }
    append_quads(&builder, parts.get());
    append_front(&builder);
    return std::move(builder.mesh);
}

// The slots around one whose layers hide each other.
//   hides   whether each slot is empty or its layer can hide others
static SlotRun run_around(const Stack *stack, i32 slot, const u8 *hides) {
    SlotRun run = {slot, slot};
    while (run.first > 0 && hides[run.first - 1] != 0) {
        --run.first;
    }
    while (run.last + 1 < stack->layer_count && hides[run.last + 1] != 0) {
        ++run.last;
    }
    return run;
}

LayerMesh drawn_mesh_create(const Stack *stack, i32 slot) {
    assert(stack != nullptr && slot >= 0 && slot < stack->layer_count && stack->layers[slot] != nullptr);
    const Owned<u8[]> hides = memory_scratch<u8>(stack->layer_count);
    for (i32 i = 0; i < stack->layer_count; ++i) {
        hides[i] = static_cast<u8>(stack->layers[i] == nullptr || layer_hides(stack->layers[i]) ? 1 : 0);
    }
    SlotRun source = {};
    return hides[slot] != 0 ? visible_mesh(stack, slot, run_around(stack, slot, hides.get()), &source)
                            : layer_mesh_create(stack->layers[slot]);
}

// Gives the layers whose heights are new the number of this picture, and returns it.
static i64 number_heights(const Stack *stack) {
    i64 number = 0;
    for (i32 i = 0; i < stack->layer_count; ++i) {
        const Layer *layer = stack->layers[i];
        number = layer != nullptr && layer->mesh_source.made > number ? layer->mesh_source.made : number;
    }
    ++number;
    for (i32 i = 0; i < stack->layer_count; ++i) {
        Layer *layer = stack->layers[i];
        if (layer != nullptr && (layer->changed != 0 || layer->heights_made == 0)) {
            layer->heights_made = number;
            layer->hides = layer_hides(layer) ? 1 : 0;
        }
    }
    return number;
}

static i32 count_live(const Stack *stack, i32 first, i32 last) {
    i32 live = 0;
    for (i32 i = first; i < stack->layer_count && i <= last; ++i) {
        live += stack->layers[i] != nullptr ? 1 : 0;
    }
    return live;
}

// Whether a mesh made anew would come out the same: no layer that it depends on has other heights, and none
// has come or gone.
//   all_hide   false when a layer of the stack hides nothing; it counts for all the others, wherever it lies
static bool is_up_to_date(const Stack *stack, const Layer *layer, bool all_hide) {
    const MeshSource *source = &layer->mesh_source;
    if (source->made == 0 || layer->heights_made > source->made) {
        return false;
    }
    const i32 first = all_hide ? source->first : 0;
    const i32 last = all_hide ? source->last : I32_MAX;
    for (i32 i = first; i < stack->layer_count && i <= last; ++i) {
        if (stack->layers[i] != nullptr && stack->layers[i]->heights_made > source->made) {
            return false;
        }
    }
    return count_live(stack, source->first, source->last) == source->live;
}

static void reverse_triangles(LayerMesh *mesh) {
    u32 *indices = mesh->indices.get();
    for (i64 a = 0, b = mesh->index_count - 3; a < b; a += 3, b -= 3) {
        std::swap_ranges(indices + a, indices + a + 3, indices + b);
    }
}

static void load_mesh(Layer *layer, LayerMesh *mesh, bool last_wins) {
    if (last_wins) {
        reverse_triangles(mesh);
    }
    layer_load_mesh(layer, mesh);
    layer->last_wins = last_wins ? 1 : 0;
}

void stack_build_meshes(Stack *stack) {
    assert(stack != nullptr && platform_gl_is_current());
    const i64 number = number_heights(stack);
    const Owned<u8[]> hides = memory_scratch<u8>(stack->layer_count);
    bool all_hide = true;
    for (i32 i = 0; i < stack->layer_count; ++i) {
        hides[i] = static_cast<u8>(stack->layers[i] == nullptr || stack->layers[i]->hides != 0 ? 1 : 0);
        all_hide = all_hide && hides[i] != 0;
    }
    bool last_wins = true;  // as long as all layers up to here hide others
    for (i32 i = 0; i < stack->layer_count; ++i) {
        Layer *layer = stack->layers[i];
        last_wins = last_wins && hides[i] != 0;
        if (layer == nullptr ||
            (is_up_to_date(stack, layer, all_hide) && (layer->last_wins != 0) == last_wins)) {
            continue;
        }
        SlotRun source = {i, i};
        if (hides[i] != 0) {
            LayerMesh mesh = visible_mesh(stack, i, run_around(stack, i, hides.get()), &source);
            load_mesh(layer, &mesh, last_wins);
        } else {
            layer_build_mesh(layer);
        }
        layer->mesh_source = {number, source.first, source.last,
                              count_live(stack, source.first, source.last)};
    }
}
