// process_arguments.h: find one argument in a command line of a process file and convert its value.
// A line is at most 1023 characters and has no line end. An argument is found by plain text search:
// its first occurrence counts, also inside a longer word. Values are separated by blanks; a tab is
// part of a value, except where a text or a decimal is read, which ends at any white space.
// Every fault is one message through process_error, and reading goes on.
#pragma once
#include "platform/owned.h"
#include "process/process_step.h"

// Size of a line's buffer, with the terminator.
inline constexpr i32 PROCESS_LINE_SIZE = 1024;

// Whether an argument or a flag occurs in the line.
bool argument_present(const char *line, const char *arg_name);

// Where an argument stands as a word of its own between blanks, also as the first word; null when it does
// not.
const char *argument_word(const char *line, const char *arg_name);

// Reports every word of the line that looks like an argument name ("-" and a letter) and is not in
// the list.
//   allowed   names, ended by a null pointer
void check_arguments(const char *line, const char *const *allowed);

// The word after the argument's name: a new text, "" when the argument or its value is missing.
NarrowText read_string_argument(const char *line, const char *arg_name);

// The integers after the argument's name, none of which may be negative.
//   values_out   receives up to `count` integers; those that cannot be read are untouched
void read_integer_arguments(const char *line, const char *arg_name, i32 *values_out, i32 count);

// The decimal after the argument's name, as the C library reads "%f" (so nan and inf are numbers).
// When the argument or its value is missing, *value is untouched and the result is false.
bool read_decimal_argument(const char *line, const char *arg_name, f32 *value);

// The same for an argument that may be absent without a fault; false then too.
bool read_optional_decimal(const char *line, const char *arg_name, f32 *value);

// A decimal in the file's unit as micrometres; otherwise as read_decimal_argument.
bool read_length_argument(const char *line, const char *arg_name, f32 *micrometres);

// The same for an argument that may be absent without a fault; false then too.
bool read_optional_length(const char *line, const char *arg_name, f32 *micrometres);

// A decimal in nanometres, whatever the file's unit is, as micrometres; otherwise as read_decimal_argument.
bool read_nanometre_argument(const char *line, const char *arg_name, f32 *micrometres);

// The etch types after "-targets".
//   target_materials   receives the names of all materials of those types, by type and file order
//   targets            receives the types as written, known or not
// Both lists belong to the caller and may hold names already.
void read_targets_argument(const char *line, NameList *target_materials, NameList *targets);
