// thickness_table.h: what was measured of each film after each step of a run, as one table of comma separated
// values.
#pragma once
#include "export/export_step.h"
#include "export/export_text.h"

inline constexpr const wchar_t *THICKNESS_TABLE_NAME = L"thickness.csv";

// Begins the table: the names of its columns.
void thickness_table_start(ExportText *table);

// Appends a row for each film of the step, from the substrate up. Lack of memory for the table is left to
// export_text_finish.
void thickness_table_add(ExportText *table, const ExportStep *step);
