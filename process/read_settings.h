// read_settings.h: the readers of the commands that set up a run. Each fills fields of the run from a
// whole command line (at most 1023 characters, no line end) and reports every fault through
// process_error.
#pragma once
#include "process/stack.h"

void read_settings(Stack *stack, const char *line);
void read_gds(Stack *stack, const char *line);
void read_location(Stack *stack, const char *line);
