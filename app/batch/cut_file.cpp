#include "app/batch/cut_file.h"

#include <cassert>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "log/log.h"
#include "log/shown_text.h"
#include "log/text.h"
#include "platform/memory.h"
#include "platform/owned_file.h"
#include "platform/platform.h"

// The program's own reader, since the few libraries for such files are not at hand on both systems.

static constexpr i32 LONGEST_LINE = 4096;  // bytes, with line end and zero
static constexpr i32 MOST_VALUES = 64;     // of a line
static constexpr i32 MOST_CUTS = 10000;

enum Column { COLUMN_NAME, COLUMN_X, COLUMN_Y, COLUMN_DX, COLUMN_DY, COLUMN_CELL, COLUMN_COUNT };

static constexpr const char *COLUMN_NAMES[COLUMN_COUNT] = {"name", "x", "y", "dx", "dy", "cell"};

struct CutReader {
    const wchar_t *path;
    i32 line_number;
    bool header_seen;
    i32 value_count;             // of the header
    i32 position[COLUMN_COUNT];  // of the columns among the values; -1: not there
    char line[LONGEST_LINE];     // with the values in place
    char *values[MOST_VALUES];
};

template <>
struct Freed<CutReader> {
    void operator()(CutReader *reader) const { memory_free(reader); }
};

static bool tell(const CutReader *reader, const wchar_t *what) {
    diagnostic_write(L"%ls:%d: %ls", reader->path, reader->line_number, what);
    return false;
}

static bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

// Reads one value from *at and ends it with a zero; *at is then behind its comma, or null behind the last
// one. Null where a quote does not close, or something stands behind it.
static char *read_value(char **at) {
    char *from = *at;
    while (is_blank(*from)) {
        ++from;
    }
    char *end = nullptr;  // behind the value
    char *next = nullptr;
    if (*from == '"') {
        char *to = ++from;
        char *read = from;
        while (*read != 0 && (read[0] != '"' || read[1] == '"')) {
            read += read[0] == '"' ? 1 : 0;
            *to++ = *read++;
        }
        if (*read == 0) {
            return nullptr;
        }
        ++read;
        read += std::strspn(read, " \t");
        if (*read != 0 && *read != ',') {
            return nullptr;
        }
        next = read;
        end = to;
    } else {
        next = from + std::strcspn(from, ",");
        end = next;
        while (end > from && is_blank(end[-1])) {
            --end;
        }
    }
    *at = *next == ',' ? next + 1 : nullptr;
    *end = 0;
    return from;
}

// Parts the line into values. Returns their number, or -1 after telling why not.
static i32 split_line(CutReader *reader) {
    i32 count = 0;
    for (char *at = reader->line; at != nullptr; ++count) {
        char *value = read_value(&at);
        if (value == nullptr) {
            tell(reader, L"a quoted value has no end, or something behind its end");
            return -1;
        }
        if (count == MOST_VALUES) {
            tell(reader, L"too many values");
            return -1;
        }
        reader->values[count] = value;
    }
    return count;
}

static i32 column_of(const char *name) {
    for (i32 i = 0; i < COLUMN_COUNT; ++i) {
        if (std::strcmp(name, COLUMN_NAMES[i]) == 0) {
            return i;
        }
    }
    return COLUMN_COUNT;
}

static bool read_header(CutReader *reader) {
    const bool semicolons = std::strchr(reader->line, ';') != nullptr;
    const i32 count = split_line(reader);
    for (i32 i = 0; i < count; ++i) {
        const i32 column = column_of(reader->values[i]);
        if (column == COLUMN_COUNT || reader->position[column] >= 0) {
            diagnostic_write(
                L"%ls:%d: %ls column \"%ls\": the header is name,x,y,dx,dy and, if wanted, cell%ls",
                reader->path, reader->line_number, column == COLUMN_COUNT ? L"unknown" : L"a second",
                shown_text(reader->values[i]).text,
                semicolons ? L"; values are parted by commas, not semicolons" : L"");
            return false;
        }
        reader->position[column] = i;
    }
    for (i32 i = 0; i < COLUMN_CELL && count > 0; ++i) {
        if (reader->position[i] < 0) {
            diagnostic_write(L"%ls:%d: the header has no column \"%s\"", reader->path, reader->line_number,
                             COLUMN_NAMES[i]);
            return false;
        }
    }
    reader->header_seen = true;
    reader->value_count = count;
    return count > 0;
}

static char *value_of(const CutReader *reader, Column column) {
    const i32 position = reader->position[column];
    return position < 0 ? nullptr : reader->values[position];
}

static bool read_cut(CutReader *reader, CutList *list) {
    const i32 count = split_line(reader);
    if (count < 0) {
        return false;
    }
    if (count != reader->value_count) {
        diagnostic_write(L"%ls:%d: %d values where the header has %d", reader->path, reader->line_number,
                         count, reader->value_count);
        return false;
    }
    if (list->count >= MOST_CUTS) {
        return tell(reader, L"too many cuts");
    }
    Cut cut = {value_of(reader, COLUMN_NAME), value_of(reader, COLUMN_X),  value_of(reader, COLUMN_Y),
               value_of(reader, COLUMN_DX),   value_of(reader, COLUMN_DY), value_of(reader, COLUMN_CELL)};
    if (cut.cell != nullptr && cut.cell[0] == 0) {
        cut.cell = nullptr;
    }
    return cut_list_append(list, &cut, {reader->path, reader->line_number});
}

// One line, its end taken off. True also for one without anything to read.
static bool read_line(CutReader *reader, CutList *list) {
    static constexpr char MARK[] = "\xEF\xBB\xBF";  // with which some programs begin UTF-8
    char *line = reader->line;
    if (reader->line_number == 1 && std::strncmp(line, MARK, 3) == 0) {
        std::memmove(line, line + 3, std::strlen(line + 3) + 1);
    }
    if (line[0] == '#' || line[std::strspn(line, " \t")] == 0) {
        return true;
    }
    return reader->header_seen ? read_cut(reader, list) : read_header(reader);
}

static bool read_lines(CutReader *reader, CutList *list, std::FILE *file) {
    while (!platform_interrupted() && std::fgets(reader->line, LONGEST_LINE, file) != nullptr) {
        ++reader->line_number;
        const size_t length = std::strcspn(reader->line, "\r\n");
        if (reader->line[length] == 0 && std::feof(file) == 0) {
            return tell(reader, L"the line is too long, or holds a byte of value 0");
        }
        reader->line[length] = 0;
        if (!read_line(reader, list)) {
            return false;
        }
    }
    return !platform_interrupted();
}

bool cut_file_read(CutList *list, const wchar_t *path) {
    assert(list != nullptr && path != nullptr);
    const OwnedFile file(platform_input_open(path, "r"));
    if (file == nullptr) {
        diagnostic_write(L"%ls: %ls", path, platform_error_text());
        return false;
    }
    const Owned<CutReader> reader(memory_new_zeroed<CutReader>());
    reader->path = path;
    for (i32 &position : reader->position) {
        position = -1;
    }
    if (!read_lines(reader.get(), list, file.get())) {
        return false;
    }
    if (std::ferror(file.get()) != 0) {
        const WideText reason = text_widen(std::strerror(errno));
        return tell(reader.get(), reason.get());
    }
    if (!reader->header_seen) {
        diagnostic_write(L"%ls: there is no header: name,x,y,dx,dy and, if wanted, cell", path);
        return false;
    }
    return true;
}
