// fine_section.h: what a fine picture shows of each film: of the triangles of visible_parts.h those that
// are the border between a film and air, or between two films of which one lets light through. The border of
// two opaque films is never seen, and of two films that touch only one gives the border.
#pragma once
#include "sim/cut_face.h"
#include "sim/settled_films.h"

// Beside the parts of visible_parts.h: in this quad a film above ends, so that the top may have a step there.
inline constexpr u8 FINE_PART_STEP = 128;

// What a grid point has between its films.
enum FineInside : u8 {
    FINE_GLASS = 1,   // a translucent film
    FINE_HOLLOW = 2,  // air, or a translucent film beneath a solid one: not one surface alone is seen there
};

struct FineSection {
    const Stack *stack;    // not owned
    CutFace face;          // the films, and how the cut face is divided between them
    Owned<u8[]> parts;     // N x M for each film: PART_TOP_A, _TOP_B, _UNDER_A, _UNDER_B, FINE_PART_STEP
    Owned<f32[]> surface;  // N x M: the top of all films, micrometres
    Owned<f32[]> solid_surface;  // N x M: the top of those that light does not go through
    Owned<u8[]> inside;          // N x M: FineInside
};

// Looks through the films of a stack as its heights are. Needs no context.
FineSection fine_section_create(const Stack *stack);

// The parts of one film, N x M of them.
u8 *fine_section_parts(const FineSection *section, i32 film);

// Whether light does not go through a film.
bool fine_film_is_solid(const FineSection *section, i32 film);
