// cut_list.h: the sections that one call cuts, by name.
#pragma once
#include "platform/base.h"
#include "process/section_choice.h"

// The texts are owned.
struct Cut {
    char *name;             // of its folder below that of the output
    char *x, *y, *dx, *dy;  // figures of a location command
    char *cell;             // null: the one that the process file names
};

// All zero is an empty list.
struct CutList {
    Cut *items;  // owned
    i32 count, capacity;
};

// Where a cut is written, for messages: an option, or a line of a file.
struct CutPlace {
    const wchar_t *file;  // null: the option --cut
    i32 line;
};

// Appends a cut of these texts, which are copied: a name that can be a folder on every system and that no cut
// before it has, four numbers, and a cell or null. False after telling diagnostic_write what is wrong.
bool cut_list_append(CutList *list, const Cut *cut, CutPlace place);

// Appends "NAME=X,Y,DX,DY". False likewise.
bool cut_list_add_option(CutList *list, const char *text);

// The section of a cut; its texts are those of the cut.
SectionChoice cut_section(const Cut *cut);

// Frees the cuts; the list is then empty.
void cut_list_free(CutList *list);
