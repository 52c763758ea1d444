// line_hints.h: hints about the lines of a process file. They tell on hint_write what a line holds that has
// no effect or another one than its writer probably meant, and change nothing.
#pragma once
#include "process/line_words.h"
#include "process/raw_line.h"
#include "process/reader_state.h"

// What the hints about raw lines keep from line to line; all zero at the start of a file.
struct RawHints {
    bool utf16;      // the file is no text of bytes, which is told once
    bool zero_told;  // in the line under way, which may come in several pieces
};

// Hints about the bytes of a line: a byte order mark, bytes of value 0, a carriage return in its middle, more
// characters than fit.
void raw_line_hints(const RawLine *line, i32 line_number, RawHints *state);

// Hints about the words of a line that is neither empty nor a comment. Each is given at most once a line or,
// where it is about an argument, once for each argument.
//   line   cut at its end
//   units  of the lengths in it
void line_hints(const char *line, i32 line_number, UnitMode units);

// The part of line_hints that looks at numbers, names and colours.
void value_hints(const LineWords *words, i32 line_number, UnitMode units);
