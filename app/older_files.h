// older_files.h: files of an earlier run in a folder that a run writes into: those that have the name of a
// picture of a step (app/picture_name.h) and one of a few extensions. One is replaced when a file of the same
// number is written.
#pragma once
#include "platform/owned.h"

struct OlderFile {
    i32 number;
    wchar_t *name;  // without the folder; owned
};

// All zero is empty.
struct OlderFiles {
    wchar_t *folder;   // owned
    OlderFile *items;  // what lay there at first and is not replaced yet; owned
    i32 count, capacity;
};

// Looks for files in a folder that is there.
//   files        empty
//   extensions   with their points
void older_files_find(OlderFiles *files, const wchar_t *folder, const wchar_t *const *extensions,
                      i32 extension_count);

// Removes what an earlier run has left under the number of a file that is written, unless it is that file
// itself. What cannot be removed counts as left.
void older_files_replace(OlderFiles *files, i32 number, const wchar_t *name);

// Frees what the record holds; it is then empty. Files stay.
void older_files_free(OlderFiles *files);
