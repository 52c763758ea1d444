// stack_extract.h: cut the polygons around the section out of the layout.
#pragma once
#include "gds/gds_database.h"
#include "process/stack.h"

// The window of the layout that the section and its margin cover, database units.
//   unit   micrometres per database unit
Box extract_window(const Stack *stack, f32 unit);

// The first cell of exactly that name, or null. A cell without a name never matches.
GdsCell *extract_cell_find(const GdsDatabase *layout, const char *name);

// Says on the console what a result of gds_flatten means for the run; true when it goes on.
//   result   0; 29 no such cell; 30 polygon limit; -2 an interrupt, which is not told here; anything else is
//            unknown
bool extract_report(i32 result, const char *cell_name);

// Makes the polygon list of a stack whose grid is laid, and tells on the console what was found.
//   layout   may be null, which is reported as an unknown error
// False, with the reason on the console, when the run cannot go on.
bool stack_extract_polygons(Stack *stack, const GdsDatabase *layout);
