// read_steps.h: the readers of the commands that make a step. Each fills a zeroed step from a whole
// command line (at most 1023 characters, no line end) and reports every fault through process_error;
// the step is usable, though wrong, after a fault. Its texts belong to the step.
#pragma once
#include "process/process_step.h"

void read_deposition(ProcessStep *step, const char *line);
void read_coating(ProcessStep *step, const char *line);
void read_photo(ProcessStep *step, const char *line);
void read_etch(ProcessStep *step, const char *line);
void read_release(ProcessStep *step, const char *line);
void read_strip(ProcessStep *step, const char *line);
void read_dump(ProcessStep *step, const char *line);
