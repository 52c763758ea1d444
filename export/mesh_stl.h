// mesh_stl.h: the films of a step as solids in an STL file.
#pragma once
#include <cstdio>
#include "export/export_step.h"

// An ExportWriter (export_formats.h).
bool mesh_stl_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]);
