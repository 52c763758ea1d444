// mesh_gltf.h: the JSON part of a glTF file: what its meshes are and where in the file they lie.
#pragma once
#include "export/export_step.h"
#include "export/export_text.h"
#include "export/solid_mesh.h"

// The solid of one film.
struct GltfFilm {
    i32 slot;
    i64 vertex_count, index_count;
    SolidVertex low, high;  // as solid_mesh.h has them
    f64 stretch;
    f64 volume;  // cubic micrometres
};

// Bytes of an index of a mesh: the largest number is left free, since graphics may take it for a mark.
inline i64 gltf_index_bytes(const GltfFilm *film) {
    return film->vertex_count < 0xFFFF ? 2 : 4;
}

// Bytes of a film's vertices and of its indices, both multiples of four: a closed surface has an even number
// of triangles.
i64 gltf_vertex_part(const GltfFilm *film);
i64 gltf_index_part(const GltfFilm *film);

// A vertex of a solid as glTF has it: x across, y up, z towards the viewer.
SolidVertex gltf_place(SolidVertex vertex);

// Appends the JSON text of a file whose one buffer holds, film by film, vertices and then indices.
//   films   count of them, 1 or more
void gltf_put(ExportText *json, const ExportStep *step, const GltfFilm *films, i32 count);
