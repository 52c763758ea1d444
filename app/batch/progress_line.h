// progress_line.h: the last line of a terminal, which tells what the program is at (log/progress.h). Other
// texts scroll above it: each of them takes it away first. Any thread.
#pragma once
#include <cstdio>
#include "platform/base.h"

// Whether there is a terminal for it: standard error, and one that can go back to the start of a line.
bool progress_line_is_possible();

// A ProgressSink: shows a line in the place of the one before, cut to the width of the terminal; null takes
// it away. It is not shown while the last text has left its line open. Nothing for a thread that is one of
// several runs.
void progress_line_show(const wchar_t *text);

// Writes a text by terminal_write, above the line. False as that does.
bool progress_line_write_text(std::FILE *stream, const char *first, const char *second, const char *third);
