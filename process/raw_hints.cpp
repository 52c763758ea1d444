#include "process/raw_hints.h"

#include <cassert>
#include <cstring>

#include "process/hints.h"

static bool begins_with(const RawLine *line, const char *bytes) {
    const size_t length = std::strlen(bytes);
    return static_cast<size_t>(line->size) >= length && std::memcmp(line->text, bytes, length) == 0;
}

// The marks that some editors put at the beginning of a file.
static void hint_byte_order_mark(const RawLine *line, RawHints *state) {
    if (begins_with(line, "\xEF\xBB\xBF")) {
        hint_write(
            1,
            L"the file begins with a UTF-8 byte order mark, which is taken for a part of the first word: "
            L"save it without the mark");
    } else if (begins_with(line, "\xFF\xFE") || begins_with(line, "\xFE\xFF")) {
        hint_write(1, L"the file is UTF-16 text, which cannot be read: save it as UTF-8 or plain text");
        state->utf16 = true;
    }
}

static void hint_zero_byte(const RawLine *line, i32 line_number, RawHints *state) {
    auto length = static_cast<i32>(std::strlen(line->text));
    if (length == line->size || line->text[0] == '#' || state->zero_told || state->utf16) {
        return;
    }
    state->zero_told = true;
    if (length == 0) {
        hint_write(line_number, L"the line begins with a byte of value 0 and is not read: take the byte out");
    } else {
        hint_write(line_number,
                   L"what follows the byte of value 0 in column %d is not read: take the byte out",
                   length + 1);
    }
}

static void hint_carriage_return(const RawLine *line, i32 line_number) {
    const size_t at = std::strcspn(line->text, "\r\n");
    const bool within = line->text[at] == '\r' && line->text[at + std::strspn(line->text + at, "\r\n")] != 0;
    if (within && line->text[0] != '#') {
        hint_write(line_number,
                   L"what follows the carriage return in column %d is not read: end lines with a line feed",
                   static_cast<i32>(at) + 1);
    }
}

void raw_line_hints(const RawLine *line, i32 line_number, RawHints *state) {
    assert(line != nullptr && state != nullptr && line_number >= 1);
    if (line_number == 1) {
        hint_byte_order_mark(line, state);
    }
    if (!line->continued) {
        state->zero_told = false;
    }
    hint_zero_byte(line, line_number, state);
    hint_carriage_return(line, line_number);
    if (line->unfinished && !line->continued) {
        hint_write(
            line_number,
            L"the line has more than %d characters: what follows them is read as a line of its own, and "
            L"counted as one",
            PROCESS_LINE_SIZE - 1);
    }
}
