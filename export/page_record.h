// page_record.h: what a page in the making consists of, for the parts of its writer. Lists and texts are
// owned.
#pragma once
#include "export/export_step.h"

// One surface of a film as a step made it. It is kept until no film has it, to compare what comes later with.
struct PagePlane {
    f32 *heights;  // owned
    i32 number;    // among all planes of the page, in the order in which they are packed
    i32 depth;     // how many planes have to be unpacked before it
    bool used;     // for finding those that no film has
};

// A slot of the stack that holds a layer or did so before. Films are numbered as their slots are, from the
// substrate up, without gaps.
struct PageFilm {
    i32 slot;
    char *name, *material;  // as the layer has them
    f32 color[4];
    PagePlane *bottom, *top;  // not owned; null while the film is not there
};

// How a plane is packed.
struct PagePlaneForm {
    i32 reference;  // number of the plane that it is the difference from; -1 for none
    i32 bytes;      // for each grid point
};

// A film that a step made or changed, and the numbers of its planes from then on.
struct PageChange {
    i32 film, bottom, top;
};

// The kind of the step before all others.
inline constexpr i32 PAGE_SUBSTRATE = -1;

struct PageStep {
    i32 number;   // of its picture
    i32 kind;     // StepKind, or PAGE_SUBSTRATE
    i32 line;     // in the process file; 0 for the substrate
    char *title;  // of its picture, UTF-8
    PageChange *changes;
    i32 change_count;
    i32 *removed;  // films
    i32 removed_count;
    PagePlaneForm *planes;  // those that the step made
    i32 plane_count;
    u8 *block;  // the same, one behind the other, packed
    i64 block_size;
};

struct PageWriter {
    i32 grid_n, grid_m;
    f64 quanta;  // per micrometre
    PageFilm *films;
    i32 film_count;
    PagePlane **kept;  // those that films have
    i32 kept_count;
    i32 plane_count;  // of all steps
    PageStep *steps;
    i32 step_count, step_capacity;
    // What made the page; UTF-8 where it was wide, as it was otherwise.
    char *program, *version, *layout, *cell, *process_name, *process_text, *cut, *heading, *date;
    f32 spacing, x, y, width, depth;  // of the section, micrometres
    bool lengths_in_nm;               // in the process file
};

// Frees what a step has, not the record.
void page_step_free(PageStep *step);
