// export_file.h: files of exports are written whole or not at all.
#pragma once
#include <cstdio>
#include "export/export_step.h"

// Writes to a file that is open for binary writing. False fills the reason when it cannot be done; what goes
// wrong with the file itself is left to the caller, who asks std::ferror.
using ExportFileWriter = bool (*)(void *context, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]);

// Lets `write` write a file of that path. False with the reason when it, the opening or the closing fails: an
// older file of that name stays then.
bool export_file_write(const wchar_t *path, void *context, ExportFileWriter write,
                       wchar_t reason[EXPORT_REASON_SIZE]);
