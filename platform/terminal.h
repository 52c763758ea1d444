// terminal.h: text on standard output and standard error that holds names of other people's making. A
// terminal takes control characters for commands, so there they are shown as "\x1b"; files and pipes get
// every byte.
#pragma once
#include <cstdarg>
#include <cstdio>
#include "platform/base.h"

// Whether people see what is written to the stream.
bool platform_is_terminal(std::FILE *stream);

// Columns of the terminal that a stream goes to; 0 when nobody knows.
i32 platform_terminal_columns(std::FILE *stream);

// Writes the three texts (UTF-8, or whatever bytes) one behind the other, and flushes them. Line feeds, tabs,
// and carriage returns before line feeds stay as they are. Needs no memory of the heap. False when not
// everything could be written; errno then tells why.
bool terminal_write(std::FILE *stream, const char *first, const char *second, const char *third);

// The same for a text made by printf. Lack of memory ends the program.
bool terminal_printf(std::FILE *stream, const char *format, ...);

// The same for arguments at hand, which are used up.
bool terminal_vprintf(std::FILE *stream, const char *format, va_list arguments);
