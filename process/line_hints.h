// line_hints.h: hints about the lines of a process file (see hints.h). They tell what a line holds that has
// no effect or another one than its writer probably meant, and change nothing.
#pragma once
#include "process/reader_state.h"

// Hints about the words of a line that is neither empty nor a comment. Each is given at most once a line or,
// where it is about an argument, once for each argument.
//   line   cut at its end
//   units  of the lengths in it
void line_hints(const char *line, i32 line_number, UnitMode units);
