// process_file.h: read a process file into the settings and steps of a run. Hostile bytes are safe.
#pragma once
#include <cstdio>
#include "process/section_choice.h"
#include "process/stack.h"

// Reads the whole file, reports every fault on the console by line, and fills the settings and the
// step list of `stack` (zeroed; owned by the caller, who frees cell_name, steps and process_text also after a
// fault). The system's reason for a file that cannot be opened, the number of faults, and hints about what is
// read otherwise than it was probably meant, go to diagnostic_write.
//   section   what every location command, and where there is none the end of the file, gives instead of its
//             own figures; null: the file's own
// Returns 0 without any fault, else 1, also after an interrupt. One read at a time.
i32 process_read_file(Stack *stack, const wchar_t *path, const SectionChoice *section = nullptr);

// The same for a file that is open for reading in text mode, at its start; the caller closes it.
i32 process_read_stream(Stack *stack, std::FILE *file);
