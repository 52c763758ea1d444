#include "process/raw_line.h"

#include <cassert>
#include <cstring>

// fgets does not say how much it has read. In a buffer full of line feeds the terminator that it writes
// stands right before the first one left, or right behind the one that it has read.
static i32 bytes_read(const char *text) {
    const void *found = std::memchr(text, '\n', PROCESS_LINE_SIZE);
    if (found == nullptr) {
        return PROCESS_LINE_SIZE - 1;
    }
    auto at = static_cast<i32>(static_cast<const char *>(found) - text);
    const bool own = at + 1 < PROCESS_LINE_SIZE && text[at + 1] == 0;
    return own ? at + 1 : at - 1;
}

bool raw_line_next(RawLine *line, std::FILE *file) {
    assert(line != nullptr && file != nullptr);
    line->continued = line->unfinished;
    std::memset(line->text, '\n', PROCESS_LINE_SIZE);
    if (std::fgets(line->text, PROCESS_LINE_SIZE, file) == nullptr) {
        line->text[0] = 0;
        return false;
    }
    line->size = bytes_read(line->text);
    line->unfinished = line->size == PROCESS_LINE_SIZE - 1 && line->text[line->size - 1] != '\n';
    return true;
}
