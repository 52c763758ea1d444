// export_formats.h: the files that can be made of one step: a table of their writers, and the way they get
// written whole.
#pragma once
#include <cstdio>
#include "export/export_step.h"

// Index of EXPORT_FORMATS.
enum ExportFormat {
    EXPORT_SVG,
    EXPORT_PDF,
    EXPORT_CSV,
    EXPORT_GDS,
    EXPORT_GLB,
    EXPORT_STL,
    EXPORT_FORMAT_COUNT,
};

// Writes a step to a file that is open for binary writing. False fills the reason when the step cannot be
// written as this format; what goes wrong with the file itself is left to the caller, who asks std::ferror.
using ExportWriter = bool (*)(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]);

struct ExportFormatForm {
    const char *name;          // on the command line
    const wchar_t *extension;  // with its point
    const wchar_t *kind;       // for people, as file dialogs name it
    bool is_solid;             // a body in space; false: a drawing or a table of the cut face
    ExportWriter write;
};

extern const ExportFormatForm EXPORT_FORMATS[EXPORT_FORMAT_COUNT];

// Writes a step to a path: the whole file or none. False with the reason otherwise; an older file of that
// name stays then.
bool export_write(const ExportStep *step, ExportFormat format, const wchar_t *path,
                  wchar_t reason[EXPORT_REASON_SIZE]);
