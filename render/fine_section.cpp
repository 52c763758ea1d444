#include "render/fine_section.h"

#include <cassert>
#include <cstring>
#include <utility>
#include "platform/memory.h"
#include "render/visible_parts.h"

// A triangle of the grid: the points at its corners, its number among all triangles, and its parts.
struct GridTriangle {
    i64 a, b, c;
    i64 number;
    u8 top, under;
};

// What the triangles need while film after film is settled.
struct SectionBuilder {
    FineSection *section;
    SettledFilm film;
    FilmFloor floor;
    Owned<i32[]> last;  // of each triangle: the film that was there last, -1 before the first
    Owned<u8[]> solid;  // of each film: fine_film_is_solid
    CutEdges edges;
};

u8 *fine_section_parts(const FineSection *section, i32 film) {
    assert(section != nullptr && film >= 0 && film < section->face.film_count);
    return section->parts.get() + film * stack_point_count(section->stack);
}

bool fine_film_is_solid(const FineSection *section, i32 film) {
    assert(section != nullptr && film >= 0 && film < section->face.film_count);
    return section->stack->layers[section->face.slots[film]]->color[3] >= 1.0F;
}

// Whether a film lies on the one that was there before it, all over a triangle. A floor that is the end of a
// film which is not there in this triangle is air here.
static bool is_contact(const SectionBuilder *builder, const GridTriangle *triangle, i32 before) {
    const u8 *presence = builder->film.presence.get();
    const i32 *ended_by = builder->floor.ended_by.get();
    const i32 slot = before >= 0 ? builder->section->face.slots[before] : -1;
    const u8 any = static_cast<u8>(presence[triangle->a] | presence[triangle->b] | presence[triangle->c]);
    return (any & FILM_FLOATS) == 0 && ended_by[triangle->a] <= slot && ended_by[triangle->b] <= slot &&
           ended_by[triangle->c] <= slot;
}

// Whether a film ends in a straight edge somewhere in a triangle, beside what lies below it.
static bool ends_straight(SectionBuilder *builder, const GridTriangle *triangle, i32 film) {
    const u8 *presence = builder->film.presence.get();
    const i64 points[3] = {triangle->a, triangle->b, triangle->c};
    for (i32 i = 0; i < 3; ++i) {
        const i64 one = points[i];
        const i64 two = points[i < 2 ? i + 1 : 0];
        const bool is_one = (presence[one] & FILM_THERE) != 0;
        const bool is_two = (presence[two] & FILM_THERE) != 0;
        if (is_one != is_two) {
            const CutEdge edge =
                cut_edges_find(&builder->edges, film, is_one ? one : two, is_one ? two : one);
            if (edge.kind == CUT_EDGE_END) {
                return true;
            }
        }
    }
    return false;
}

// Marks what shows of the border between a film and the one before it.
static void mark_border(SectionBuilder *builder, const GridTriangle *triangle, i32 film) {
    FineSection *section = builder->section;
    const i32 before = builder->last[triangle->number];
    const bool contact = is_contact(builder, triangle, before);
    u8 *under = fine_section_parts(section, film) + triangle->number / 2;
    if (before < 0) {
        *under = static_cast<u8>(*under | (contact ? 0 : triangle->under));
        return;
    }
    u8 *top = fine_section_parts(section, before) + triangle->number / 2;
    const bool solid = builder->solid[film] != 0;
    const bool solid_before = builder->solid[before] != 0;
    const bool ends = ends_straight(builder, triangle, film);
    for (i32 lower = 0; lower < film && ends; ++lower) {
        u8 *part = fine_section_parts(section, lower) + triangle->number / 2;
        *part = static_cast<u8>(*part | FINE_PART_STEP);
    }
    const bool shows_top = !contact || !solid || ends;  // two translucent films: see fine_mesh.cpp
    const bool shows_under = !contact || !solid_before;
    *top = static_cast<u8>(*top | (shows_top ? triangle->top : 0));
    *under = static_cast<u8>(*under | (shows_under ? triangle->under : 0));
}

// Whether nothing shows of the border beneath a quad: a solid film lies on a solid one all over it. That is
// so for most quads, and quickly seen.
static bool is_buried(const SectionBuilder *builder, i64 point, i32 film) {
    const i64 grid_n = builder->section->stack->grid_n;
    const u8 *near_row = builder->film.presence.get() + point;
    const u8 *far_row = near_row + grid_n;
    const i32 *near_ends = builder->floor.ended_by.get() + point;
    const i32 *far_ends = near_ends + grid_n;
    const i32 before = builder->last[2 * point];
    const bool whole = near_row[0] == FILM_THERE && near_row[1] == FILM_THERE && far_row[0] == FILM_THERE &&
                       far_row[1] == FILM_THERE;
    return whole && before >= 0 && builder->last[2 * point + 1] == before &&
           (builder->solid[film] & builder->solid[before]) != 0 &&
           (near_ends[0] & near_ends[1] & far_ends[0] & far_ends[1]) == -1;
}

static void settle_triangle(SectionBuilder *builder, const GridTriangle *triangle, i32 film) {
    const u8 *presence = builder->film.presence.get();
    const u8 any = static_cast<u8>(presence[triangle->a] | presence[triangle->b] | presence[triangle->c]);
    if ((any & FILM_THERE) != 0) {
        mark_border(builder, triangle, film);
        builder->last[triangle->number] = film;
    }
}

// Keeps what the light on the films needs to know of a film that was settled.
static void note_inside(const SectionBuilder *builder, i32 film) {
    FineSection *section = builder->section;
    const bool solid = fine_film_is_solid(section, film);
    const i64 count = stack_point_count(section->stack);
    for (i64 point = 0; point < count; ++point) {
        const u8 presence = builder->film.presence[point];
        if ((presence & FILM_THERE) == 0) {
            continue;
        }
        u8 *inside = &section->inside[point];
        const bool hollow = (presence & FILM_FLOATS) != 0 || (solid && (*inside & FINE_GLASS) != 0);
        *inside = static_cast<u8>(*inside | (hollow ? FINE_HOLLOW : 0) | (solid ? 0 : FINE_GLASS));
        if (solid) {
            section->solid_surface[point] = builder->film.top[point];
        }
    }
}

static void settle_film(SectionBuilder *builder, i32 film) {
    FineSection *section = builder->section;
    const Stack *stack = section->stack;
    const i64 grid_n = stack->grid_n;
    const i32 slot = section->face.slots[film];
    film_settle(stack, slot, &builder->floor, &builder->film);
    for (i64 m = 0; m + 1 < stack->grid_m; ++m) {
        for (i64 n = 0; n + 1 < grid_n; ++n) {
            const i64 point = m * grid_n + n;
            if (is_buried(builder, point, film)) {
                builder->last[2 * point] = builder->last[2 * point + 1] = film;
                continue;
            }
            const GridTriangle near_one = {point,     point + 1,  point + grid_n,
                                           2 * point, PART_TOP_A, PART_UNDER_A};
            const GridTriangle far_one = {point + 1,     point + grid_n + 1, point + grid_n,
                                          2 * point + 1, PART_TOP_B,         PART_UNDER_B};
            settle_triangle(builder, &near_one, film);
            settle_triangle(builder, &far_one, film);
        }
    }
    note_inside(builder, film);
    cut_face_take(&section->face, film, &builder->film);
    film_floor_raise(slot, &builder->film, &builder->floor);
}

// The last film of each triangle lies open.
static void mark_surface(const SectionBuilder *builder) {
    FineSection *section = builder->section;
    const i64 count = 2 * stack_point_count(section->stack);
    for (i64 number = 0; number < count; ++number) {
        if (builder->last[number] >= 0) {
            u8 *part = fine_section_parts(section, builder->last[number]) + number / 2;
            *part = static_cast<u8>(*part | (number % 2 == 0 ? PART_TOP_A : PART_TOP_B));
        }
    }
}

FineSection fine_section_create(const Stack *stack) {
    assert(stack != nullptr && stack->grid_n > 0 && stack->grid_m > 0);
    FineSection section = {};
    section.stack = stack;
    section.face = cut_face_begin(stack);
    const i64 count = stack_point_count(stack);
    section.parts = memory_scratch_zeroed<u8>(section.face.film_count * count);
    section.inside = memory_scratch_zeroed<u8>(count);
    section.solid_surface = memory_scratch<f32>(count);
    SectionBuilder builder = {&section,
                              settled_film_create(stack, stack->grid_m),
                              film_floor_create(stack, stack->grid_m),
                              memory_scratch<i32>(2 * count),
                              memory_scratch<u8>(section.face.film_count),
                              cut_edges_create(stack, &section.face)};
    for (i32 film = 0; film < section.face.film_count; ++film) {
        builder.solid[film] = static_cast<u8>(fine_film_is_solid(&section, film) ? 1 : 0);
    }
    std::memset(builder.last.get(), -1, static_cast<size_t>(2 * count) * sizeof(i32));
    std::memcpy(section.solid_surface.get(), builder.floor.height.get(),
                static_cast<size_t>(count) * sizeof(f32));
    for (i32 film = 0; film < section.face.film_count; ++film) {
        settle_film(&builder, film);
    }
    mark_surface(&builder);
    cut_face_close_slits(&section.face);
    cut_face_divide(&section.face);
    section.surface = std::move(builder.floor.surface);
    return section;
}
