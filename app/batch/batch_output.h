// batch_output.h: the standard streams of quarn-batch. Console text goes to standard output, message
// boxes and diagnostics to standard error, a line each behind "quarn-batch: ". Control characters are
// shown as "\x1b" where a stream is a terminal. Any thread.
#pragma once
#include <cstdio>
#include "platform/base.h"

// Makes sure that the three standard streams are open, so that no file of the run takes the place of
// one that the caller has closed. First act of the program.
void batch_streams_open();

enum BatchConsole {
    BATCH_CONSOLE_NOWHERE = 0,  // at first
    BATCH_CONSOLE_ERROR,        // standard error, while the program starts
    BATCH_CONSOLE_OUTPUT,       // standard output
};

// Where console text goes from here on.
void batch_console_to(BatchConsole console);

// What a thread that is one of several runs does with its texts instead; its context
// (platform/thread_context.h), which the threads that it starts inherit, begins with this.
struct BatchTexts {
    void (*console)(BatchTexts *texts, const wchar_t *text);
    void (*error_line)(BatchTexts *texts, const wchar_t *text);
};

// Console sink: text as UTF-8 with bare line feeds, flushed at once.
void batch_console_append(const wchar_t *text);

// What printf makes of the format, to standard output, whatever the console's text does; names in it are
// bytes as the layout has them. Lack of memory ends the program.
void batch_output_printf(const char *format, ...);

// Sink of message boxes and diagnostics.
void batch_error_line(const wchar_t *text);

// Writes a console text to a file as it would stand on the standard output. False when the system refuses.
bool batch_write_console(std::FILE *file, const wchar_t *text);

// A line behind "quarn-batch: " to standard error, whatever the calling thread's context.
void batch_write_error(const wchar_t *text);

// Whether everything reached the standard output; if not, the system's reason is told once.
bool batch_output_finish();
