// log.h: the log file, the console, message boxes and diagnostics: where all text of the program goes.
// The front end sets the sinks; everything above calls these functions and never asks which front
// end is there. Wide formats use "%ls" for wide text; narrow formats are plain printf.
#pragma once
#include "platform/base.h"

// Log file: one line per event, opened and closed for each, so that every line is on disk at once.

// Sets the path of the log file, truncates it and writes its header. A file that cannot be opened
// is not reported. Null unsets the path.
void log_start(const wchar_t *path);

// One line to the log file (when its path is set) and to the debugger. Any thread; lines stay whole and none
// is lost.
void log_write(const wchar_t *format, ...);

// Frees the path; later lines go to the debugger only.
void log_end();

// Console: the text area that shows progress and errors. Nothing adds a line end: texts carry "\r\n".

using ConsoleSink = void (*)(const wchar_t *text);
using ConsoleClearSink = void (*)();

// Where console text goes; null drops it. Before the first call everything is dropped.
void console_set_sink(ConsoleSink append, ConsoleClearSink clear);

void console_append(const wchar_t *text);      // literally, no formatting
void console_append_narrow(const char *text);  // widened by sign extension (text_widen)

// Appends what printf makes of the format, wide and narrow (widened as above).
void console_printf_w(const wchar_t *format, ...);
// The narrow one.
void console_printf(const char *format, ...);

// Empties the console.
void console_clear();

// Drops what the calling thread says on the console from here on, or no longer; for work that repeats what
// the console has told already. Diagnostics are told as ever. Returns what held before.
bool console_mute(bool muted);

// Message box with the caption "Quarn" and the button OK.

using MessageSink = void (*)(const wchar_t *text);

// Where message boxes go; null (the start) writes them to standard error. Lack of memory is shown
// through this sink as well.
void message_set_sink(MessageSink sink);

// Shows a message box.
void message_show(const wchar_t *text);

// Diagnostics: what a person needs to mend bad input beyond what the console shows, one line
// each without a line end (byte offsets, reasons of the system, hints). The command line program writes
// them to standard error at once. The desktop programs (the start) write them to the log file and, so
// that they never come between the console's own texts, to the console when a command has said what it has
// to say.

using DiagnosticSink = void (*)(const wchar_t *line);

void diagnostic_set_sink(DiagnosticSink sink);      // null restores log file and console
void diagnostic_write(const wchar_t *format, ...);  // any thread

// Appends the lines since the last call to the console, each as "Note: LINE" and a line end; nothing where
// a sink has had them. Any thread.
void diagnostics_show();
