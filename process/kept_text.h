// kept_text.h: the text of a process file, kept while it is read, since a file that comes from a pipe can be
// read only once.
#pragma once
#include <cstdio>
#include "process/raw_line.h"

inline constexpr i64 KEPT_TEXT_MOST = i64{4} << 20;  // bytes; what a longer file has beyond them is left out

// All zero is an empty text.
struct KeptText {
    char *bytes;  // owned; without a terminator
    i64 size, capacity;
};

// Appends a line as it was read. Lack of memory ends the program.
void kept_text_add(KeptText *kept, const RawLine *line);

// Appends what nobody has read of a file, unless it is a pipe, whose other end may not be through. Faults of
// reading are passed over.
void kept_text_add_rest(KeptText *kept, std::FILE *file);

// The whole text, zero-terminated, freed with memory_free: bytes of value 0 are blanks. `kept` is then empty.
char *kept_text_take(KeptText *kept);
