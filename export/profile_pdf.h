// profile_pdf.h: the cut face of a step as a PDF drawing.
#pragma once
#include <cstdio>
#include "export/export_step.h"

// An ExportWriter (export_formats.h).
bool profile_pdf_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]);
