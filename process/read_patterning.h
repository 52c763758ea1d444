// read_patterning.h: the readers of the commands that pattern and take away, and of dump.
// Each fills a zeroed step from a whole command line (at most 1023 characters, no line end), between
// reader_state_start and reader_state_end, and reports every fault through process_error; the step is usable,
// though wrong, after a fault. Its texts belong to the step.
#pragma once
#include "process/process_step.h"

// "photo": resist with the pattern of a mask. Raises or lowers the extremes of the file's resolutions.
void read_photo(ProcessStep *step, const char *line);

// "strip": the resist of the last photo goes.
void read_strip(ProcessStep *step, const char *line);

// "etch": materials of the named etch types go to a depth.
void read_etch(ProcessStep *step, const char *line);

// "release": materials of the named etch types go entirely.
void read_release(ProcessStep *step, const char *line);

// "dump": the heights go to a file. Has no arguments; the line may be anything.
void read_dump(ProcessStep *step, const char *line);
