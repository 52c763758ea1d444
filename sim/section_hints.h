// section_hints.h: hints about a section and the layout it is cut from (see process/hints.h): a section
// outside its cell, a cell without polygons, masks without polygons, a cell name that nearly exists. They
// change no result.
#pragma once
#include "gds/gds_database.h"
#include "process/stack.h"

// Looks at a stack with a cell name whose extraction has been tried.
//   cell    of the section; null when the layout has none of that name
//   path    of the process file
void section_hints(const Stack *stack, const GdsDatabase *layout, GdsCell *cell, const wchar_t *path);
