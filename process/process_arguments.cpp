#include "process/process_arguments.h"

#include <cassert>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "process/process_error.h"
#include "process/process_text.h"
#include "process/reader_state.h"

bool argument_present(const char *line, const char *arg_name) {
    assert(line != nullptr && arg_name != nullptr);
    return std::strstr(line, arg_name) != nullptr;
}

const char *argument_word(const char *line, const char *arg_name) {
    assert(line != nullptr && arg_name != nullptr);
    const size_t length = std::strlen(arg_name);
    const char *word = line + std::strspn(line, " ");
    while (*word != 0) {
        const size_t size = std::strcspn(word, " ");
        if (size == length && std::memcmp(word, arg_name, size) == 0) {
            return word;
        }
        word += size;
        word += std::strspn(word, " ");
    }
    return nullptr;
}

static void copy_line(char copy[PROCESS_LINE_SIZE], const char *line) {
    size_t length = std::strlen(line);
    length = length < PROCESS_LINE_SIZE ? length : PROCESS_LINE_SIZE - 1;
    std::memcpy(copy, line, length);
    copy[length] = 0;
}

// The next word at *cursor, or null at the end. Only blanks separate words, and a run of them
// counts as one. Cuts the text.
static char *next_token(char **cursor) {
    char *start = *cursor + std::strspn(*cursor, " ");
    if (*start == 0) {
        return nullptr;
    }
    char *end = start + std::strcspn(start, " ");
    *cursor = *end != 0 ? end + 1 : end;
    *end = 0;
    return start;
}

static bool is_letter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

static bool is_listed(const char *token, const char *const *allowed) {
    for (; *allowed != nullptr; ++allowed) {
        if (std::strcmp(token, *allowed) == 0) {
            return true;
        }
    }
    return false;
}

void check_arguments(const char *line, const char *const *allowed) {
    assert(line != nullptr && allowed != nullptr);
    char copy[PROCESS_LINE_SIZE];
    copy_line(copy, line);
    char *cursor = copy;
    for (char *token = next_token(&cursor); token != nullptr; token = next_token(&cursor)) {
        if (token[0] == '-' && is_letter(token[1]) && !is_listed(token, allowed)) {
            process_error("Invalid argument %s", token);
        }
    }
}

NarrowText read_string_argument(const char *line, const char *arg_name) {
    assert(line != nullptr && arg_name != nullptr);
    char value[PROCESS_LINE_SIZE] = "";
    const char *found = std::strstr(line, arg_name);
    if (found == nullptr) {
        process_error("Argument %s not found", arg_name);
    } else if (std::sscanf(found, "%*s %1023s", value) != 1) {
        process_error("No string found reading %s argument", arg_name);
        value[0] = 0;
    }
    if (value[0] == '-') {
        process_error("Invalid character '-' in argument");
    }
    return process_text_copy(value);
}

// The integer that a token begins with, 0 without one; one that does not fit becomes the nearest.
static i32 leading_integer(const char *token) {
    const i64 value = std::strtoll(token, nullptr, 10);
    if (value > I32_MAX) {
        return I32_MAX;
    }
    return value < I32_MIN ? I32_MIN : static_cast<i32>(value);
}

void read_integer_arguments(const char *line, const char *arg_name, i32 *values_out, i32 count) {
    assert(line != nullptr && arg_name != nullptr && values_out != nullptr && count > 0);
    char copy[PROCESS_LINE_SIZE];
    copy_line(copy, line);
    char *cursor = std::strstr(copy, arg_name);
    if (cursor == nullptr) {
        process_error("Argument %s not found", arg_name);
        return;
    }
    next_token(&cursor);  // the name
    char *token = next_token(&cursor);
    if (token == nullptr) {
        process_error("No integer value or values found reading argument %s", arg_name);
        return;
    }
    for (i32 i = 0; i < count; ++i) {
        if (token == nullptr) {
            process_error(
                i == 0 ? "Argument %s without value" : "Argument %s with incorrect number of values",
                arg_name);
            return;
        }
        if (token[0] == '-') {
            process_error("Not enough integer values found reading argument %s", arg_name);
            return;
        }
        if (token[std::strspn(token, "0123456789")] != 0) {
            // Files older than version 2 leave such a value out without a word.
            if (g_reader.version >= 2) {
                process_error("Non integer value or values found reading argument %s", arg_name);
                values_out[i] = leading_integer(token);
            }
            return;
        }
        values_out[i] = leading_integer(token);
        token = next_token(&cursor);
    }
}

bool read_decimal_argument(const char *line, const char *arg_name, f32 *value) {
    assert(line != nullptr && arg_name != nullptr && value != nullptr);
    const char *found = std::strstr(line, arg_name);
    if (found == nullptr) {
        process_error("Argument %s not found", arg_name);
        return false;
    }
    f32 read = 0.0F;
    if (std::sscanf(found, "%*s %f", &read) != 1) {
        process_error("No decimal number found reading %s argument", arg_name);
        return false;
    }
    *value = read;
    return true;
}

bool read_optional_decimal(const char *line, const char *arg_name, f32 *value) {
    return argument_present(line, arg_name) && read_decimal_argument(line, arg_name, value);
}

bool read_length_argument(const char *line, const char *arg_name, f32 *micrometres) {
    assert(micrometres != nullptr);
    if (!read_decimal_argument(line, arg_name, micrometres)) {
        return false;
    }
    if (g_reader.units == UNIT_NANOMETRES) {
        *micrometres = *micrometres / 1000.0F;
    } else if (g_reader.units == UNIT_UNSET) {
        process_error(
            "No units specified. Make sure gen command is given above with valid -use_nm argument.");
    }
    return true;
}

bool read_optional_length(const char *line, const char *arg_name, f32 *micrometres) {
    return argument_present(line, arg_name) && read_length_argument(line, arg_name, micrometres);
}

bool read_nanometre_argument(const char *line, const char *arg_name, f32 *micrometres) {
    assert(micrometres != nullptr);
    if (!read_decimal_argument(line, arg_name, micrometres)) {
        return false;
    }
    *micrometres = *micrometres / 1000.0F;
    return true;
}

// Appends the names of all materials of an etch type; false when there is none.
static bool append_materials_of_type(NameList *target_materials, const char *type) {
    bool found = false;
    const MaterialTable *table = g_reader.materials;
    assert(table != nullptr && "outside of a read");
    for (i32 i = 0; i < table->count; ++i) {
        const MaterialEntry *entry = &table->entries[i];
        if (entry->type != nullptr && std::strcmp(entry->type, type) == 0) {
            name_list_append(target_materials, entry->name);
            found = true;
        }
    }
    return found;
}

void read_targets_argument(const char *line, NameList *target_materials, NameList *targets) {
    assert(line != nullptr && target_materials != nullptr && targets != nullptr);
    char copy[PROCESS_LINE_SIZE];
    copy_line(copy, line);
    char *cursor = std::strstr(copy, "-targets");
    if (cursor == nullptr) {
        process_error("Argument %s not found", "-targets");
        return;
    }
    next_token(&cursor);  // the name
    for (char *token = next_token(&cursor); token != nullptr && token[0] != '-';
         token = next_token(&cursor)) {
        const bool found = append_materials_of_type(target_materials, token);
        name_list_append(targets, token);
        if (!found) {
            process_error("Target etch type %s is undefined", token);
        }
    }
}
