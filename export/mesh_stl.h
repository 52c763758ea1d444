// mesh_stl.h: the films of a step as solids in a binary STL file: micrometres, x across the section, y along
// it, z up. All films are in one file, from the bottom up, each a closed surface of its own (solid_mesh.h);
// the format knows no names, colours or parts. What the header says is for people.
#pragma once
#include <cstdio>
#include "export/export_step.h"

// An ExportWriter (export_formats.h). The reason: no film has a volume, or there are more triangles than the
// format can count.
bool mesh_stl_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]);
