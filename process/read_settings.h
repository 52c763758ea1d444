// read_settings.h: the readers of the commands that set up a run. Each fills fields of the run from a
// whole command line (at most 1023 characters, no line end) and reports every fault through
// process_error.
#pragma once
#include "process/stack.h"

// "settings": the grid size, the camera angle and the flags; also the file's version and unit, which the
// readers of the lines below go by.
void read_settings(Stack *stack, const char *line);

// "gds": the layout cell. An earlier name is freed.
void read_gds(Stack *stack, const char *line);

// "location": the corner of the section and its extents. A value that is missing keeps what it was.
void read_location(Stack *stack, const char *line);
