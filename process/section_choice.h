// section_choice.h: a section that is cut in the place of the one that a process file names.
#pragma once
#include "process/process_arguments.h"

// The figures are texts as they would stand in a location command, in the units of the file: one number each,
// shorter than SECTION_FIGURE_SIZE. The texts are not owned.
struct SectionChoice {
    const char *x, *y;    // lower-left corner
    const char *dx, *dy;  // width and depth
    const char *cell;     // to cut; null: the one that the file names
};

inline constexpr i32 SECTION_FIGURE_SIZE = 64;  // bytes, with the zero at the end

// Writes the location command of a choice.
void section_choice_line(const SectionChoice *choice, char line[PROCESS_LINE_SIZE]);
