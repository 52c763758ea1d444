// profile_face.h: the cut face of a step as its drawings need it: the materials that are seen, and the
// pieces.
#pragma once
#include "export/export_step.h"
#include "export/material_numbers.h"
#include "export/profile_borders.h"

struct ProfileFace {
    Owned<MaterialNumbers> materials;
    StationPieces pieces;    // a region is a material's number, less 1
    f32 spacing;             // of columns, micrometres
    f64 right;               // micrometres from the first column to the last
    f64 lowest, highest;     // of all pieces, micrometres; both 0 where there is none
    Owned<bool[]> is_shown;  // of each material: whether the face has it
};

// The face of the stack as its heights are.
ProfileFace profile_face_create(const Stack *stack);
