// cut_file.h: lists of cuts as files of comma separated values, which every spreadsheet writes.
#pragma once
#include "app/batch/cut_list.h"

// Appends the cuts of a file: a header that names the columns name, x, y, dx, dy and, if there is one, cell,
// in any order, then a line a cut. Values may stand in double quotes (a doubled one is one of their
// characters), blanks around them count for nothing, empty lines and lines that begin with "#" are left out.
// False after telling diagnostic_write what is wrong, with its line; an interrupt is not told.
bool cut_file_read(CutList *list, const wchar_t *path);
