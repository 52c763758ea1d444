// fine_mesh.h: the meshes of fine pictures: what a section shows (fine_section.h), the level parts of it in
// blocks (sim/level_blocks.h), and the cut face (sim/cut_face.h). Neighbouring triangles share their corners.
#pragma once
#include "render/fine_builder.h"

// A mesher before the first film. The section must stay. Needs no context.
FineMesher fine_mesher_create(const FineSection *section, FineEye eye);

// The mesh of the next film; `section->film_count` of them can be had. The triangles of a solid film are its
// indices. Those of a translucent one go to `order`, for which the vertices of its mesh are numbered.
LayerMesh fine_mesher_next(FineMesher *mesher, FineOrder *order);
