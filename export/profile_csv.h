// profile_csv.h: the heights along the cut face of a step as a table of comma separated values: a column of
// positions, micrometres from the section's left edge, and for each film from the substrate up its bottom and
// its top, nanometres; a row a grid column. Each height reads back to the last bit (export_text_put_nm);
// where a film is absent its bottom and top are equal, as in the dump of heights.
#pragma once
#include <cstdio>
#include "export/export_step.h"

// An ExportWriter (export_formats.h).
bool profile_csv_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]);
