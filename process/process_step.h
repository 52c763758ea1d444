// process_step.h: one command of the process file, and the ordered list of them.
// Lengths are micrometres.
#pragma once
#include "platform/owned.h"

// Names of the materials that the program itself gives.
inline constexpr char SUBSTRATE_MATERIAL[] = "_SUB_";
inline constexpr char RESIST_MATERIAL[] = "_PR_";

// Kinds 1, 4 and 5 are never produced.
enum StepKind {
    STEP_COATING = 0,
    STEP_DEPOSITION = 2,  // also the implicit substrate
    STEP_DUMP = 3,
    STEP_PHOTO = 6,
    STEP_ETCH = 7,
    STEP_STRIP = 8,
    STEP_RELEASE = 9,
};

// Growable array of owned texts.
struct NameList {
    char **items;
    i32 count, capacity;
};

// Every field that a command does not have is zero. Texts are owned, zero-terminated, allocated
// with memory_allocate; null when the command has none.
struct ProcessStep {
    i32 kind;             // StepKind
    char *title;          // caption of the step's picture, "OXIDE deposition"; substrate and dump have none
    char *label;          // legend text of the layer
    char *material;       // material name; SUBSTRATE_MATERIAL for the substrate
    char *material_type;  // etch type, the word that -targets names
    f32 thickness;
    f32 color_r, color_g, color_b;  // 0..1
    f32 alpha;                      // 0..1
    f32 step_coverage;              // deposition: 0 straight up to 1 conformal
    f32 dop;                        // coating, photo: degree of planarisation
    f32 rr;                         // coating, photo: reflow, smoothing radius in thicknesses
    char *resist_ref;               // photo: the resist's name; strip: "stand alone"
    i32 mask_id;                    // photo: layout layer of the mask
    bool one_datatype;              // photo: only polygons of mask_datatype are the mask
    i32 mask_datatype;              // photo: -datatype, where it is given
    i32 mask_type;                  // photo: 1 dark, 0 clear
    f32 resolution;                 // photo
    f32 taper;                      // photo: wall angle, degrees
    f32 iso;                        // etch: 0 anisotropic to 1 fully isotropic
    f32 depth;                      // etch
    char *name;                     // etch, release, strip: -name
    NameList target_materials;      // etch, release: materials whose etch type is a target
    i32 line_number;                // of the command in the process file; 0 for the substrate
};

// Element 0 is always the substrate.
struct StepList {
    ProcessStep **items;  // owned, with every step
    i32 count, capacity;
};

// A new, empty list with room for 512, freed with step_list_free.
StepList *step_list_create();

// Appends a step (allocated with memory_new_zeroed), which the list then owns.
void step_list_append(StepList *steps, ProcessStep *step);

// Frees the list with every step; null is ignored.
void step_list_free(StepList *steps);

template <>
struct Freed<StepList> {
    void operator()(StepList *steps) const { step_list_free(steps); }
};

// Makes a record an empty list with room for 512; all zero is a valid empty list too.
void name_list_create(NameList *list);

// Appends a copy of the name.
void name_list_append(NameList *list, const char *name);

// Frees the texts and the array, not the record, which is left empty.
void name_list_free(NameList *list);

// For a list that is a local of a function: owned through its address.
template <>
struct Freed<NameList> {
    void operator()(NameList *list) const { name_list_free(list); }
};
