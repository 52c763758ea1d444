// process_error.h: faults of a process file.
#pragma once

// Writes one fault to the console, with the number of the line last read when there is one, and
// remembers that the file is unusable. Reading goes on.
//   format   narrow printf format, without a line end
void process_error(const char *format, ...);
