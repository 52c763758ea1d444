// raw_hints.h: hints about the bytes of the lines of a process file (see hints.h), which the words of a line
// no longer show.
#pragma once
#include "process/raw_line.h"

// What the hints about raw lines keep from line to line; all zero at the start of a file.
struct RawHints {
    bool utf16;      // the file is no text of bytes, which is told once
    bool zero_told;  // in the line under way, which may come in several pieces
};

// Hints about the bytes of a line: a byte order mark, bytes of value 0, a carriage return in its middle, more
// characters than fit.
void raw_line_hints(const RawLine *line, i32 line_number, RawHints *state);
