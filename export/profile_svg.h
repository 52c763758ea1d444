// profile_svg.h: the cut face of a step as an SVG drawing.
#pragma once
#include <cstdio>
#include "export/export_step.h"

// An ExportWriter (export_formats.h).
bool profile_svg_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]);
