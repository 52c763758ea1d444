// profile_csv.h: the heights along the cut face of a step as a table.
#pragma once
#include <cstdio>
#include "export/export_step.h"

// An ExportWriter (export_formats.h).
bool profile_csv_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]);
