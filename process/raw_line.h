// raw_line.h: the lines of a process file as they lie in it, with what a text that ends at its first zero
// byte does not show.
#pragma once
#include <cstdio>
#include "process/process_arguments.h"

struct RawLine {
    char text[PROCESS_LINE_SIZE];  // as fgets leaves it
    i32 size;                      // bytes read, bytes of value 0 among them
    bool continued;                // the rest of a line that did not fit
    bool unfinished;               // filled to its end without a line end
};

// Reads on; `line` holds the line before, all zero at first. False at the end of the file.
bool raw_line_next(RawLine *line, std::FILE *file);
