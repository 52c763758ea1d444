// mesh_glb.h: the films of a step as solids in a binary glTF 2.0 file: a node for each film with its name,
// colour and opacity. A glTF viewer has the section in metres, x across, y up and the cut face in front; the
// meshes are in micrometres, across and along to a ten-thousandth or so (solid_mesh.h), under a node that
// scales them, so that every height is just the one of the film and every column just as wide as the others.
#pragma once
#include <cstdio>
#include "export/export_step.h"

// An ExportWriter (export_formats.h). The reason: no film has a volume, or the file would exceed the 4 GB
// that the format can count.
bool mesh_glb_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]);
