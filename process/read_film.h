// read_film.h: the readers of the commands that add a film of a new material.
// Each fills a zeroed step from a whole command line (at most 1023 characters, no line end), between
// reader_state_start and reader_state_end, and reports every fault through process_error; the step is usable,
// though wrong, after a fault. Its texts belong to the step.
#pragma once
#include "process/process_step.h"

// "deposition": a film that grows on the surface, between straight up and conformal. The material becomes
// known to the lines below.
void read_deposition(ProcessStep *step, const char *line);

// "coating": a film that is poured on and levels itself. The material becomes known to the lines below.
void read_coating(ProcessStep *step, const char *line);
