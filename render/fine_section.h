// fine_section.h: what a fine picture shows of each film: of the triangles of visible_parts.h those that
// are the border between a film and air, or between two films of which one lets light through. The border of
// two opaque films is never seen, and of two films that touch only one gives the border.
#pragma once
#include "render/fine_heights.h"

// What a grid point has between its films.
enum FineInside : u8 {
    FINE_GLASS = 1,   // a translucent film
    FINE_HOLLOW = 2,  // air, or a translucent film beneath a solid one: not one surface alone is seen there
};

struct FineSection {
    const Stack *stack;  // not owned
    i32 film_count;
    Owned<i32[]> slots;                  // of the films that are drawn, bottom first
    Owned<u8[]> parts;                   // N x M for each film: PART_TOP_A, _TOP_B, _UNDER_A, _UNDER_B
    Owned<f32[]> front_low, front_high;  // N for each film: its bottom and its top in the cut face
    Owned<f32[]> surface;                // N x M: the top of all films, micrometres
    Owned<f32[]> solid_surface;          // N x M: the top of those that light does not go through
    Owned<u8[]> inside;                  // N x M: FineInside
};

// Looks through the films of a stack as its heights are. Needs no context.
FineSection fine_section_create(const Stack *stack);

// The parts of one film, N x M of them.
u8 *fine_section_parts(const FineSection *section, i32 film);

// Whether light does not go through a film.
bool fine_film_is_solid(const FineSection *section, i32 film);
