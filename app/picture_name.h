// picture_name.h: the title of a step's picture, and the names of the files that are made of a step.
#pragma once
#include "platform/owned.h"
#include "process/stack.h"

// The systems whose rules for file names are known.
enum PictureNameRules {
    PICTURE_NAME_LINUX,    // 255 bytes of UTF-8; no "/"
    PICTURE_NAME_WINDOWS,  // 255 units of UTF-16; none of / \ < > : " | ? *
};

PictureNameRules picture_name_rules();  // those of this system

// The title of the picture after a step of the run, 0 the substrate. Null when it cannot be made.
WideText picture_title(const Stack *stack, i32 step_index);

// The file name of a picture, or of something else made of the same step: the picture's number with at least
// three digits, a blank, its title and an extension. Characters that the rules forbid, and control
// characters, become "_". A title that is too long is cut between two characters.
//   number      0 or more
//   extension   with its point
//   shortened   receives whether the title was cut; may be null
WideText picture_name(i32 number, const wchar_t *title, const wchar_t *extension, PictureNameRules rules,
                      bool *shortened);

// The number of a picture when a file has a name that picture_name gives with this extension; else -1.
i32 picture_name_number(const wchar_t *name, const wchar_t *extension);

// Tells each step of a process file whose picture will get a shortened name.
void picture_names_check(const Stack *stack, const wchar_t *extension);
