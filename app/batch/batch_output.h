// batch_output.h: the standard streams of quarn-batch. Console text goes to standard output, message
// boxes and diagnostics to standard error, a line each behind "quarn-batch: ". Control characters are
// shown as "\x1b" where a stream is a terminal. Any thread.
#pragma once
#include "platform/base.h"

// Makes sure that the three standard streams are open, so that no file of the run takes the place of
// one that the caller has closed. First act of the program.
void batch_streams_open();

// Console sinks: text as UTF-8 with bare line feeds, flushed at once, to standard output, or to
// standard error while the program starts.
void batch_console_append(const wchar_t *text);
void batch_console_append_error(const wchar_t *text);

// Sink of message boxes and diagnostics.
void batch_error_line(const wchar_t *text);

// Whether everything reached the standard output; if not, the system's reason is told once.
bool batch_output_finish();
