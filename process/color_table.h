// color_table.h: colour names with their red, green and blue values, read from a text file.
#pragma once
#include "platform/base.h"

// Adds the entries of a colour file ("name word red, green, blue" a line) to the program's one table.
// Returns 0; 1 when the file cannot be opened or a line cannot be read (earlier entries stay; what
// helps to mend it goes to diagnostic_write).
i32 color_table_load_file(const wchar_t *path);

// The same for "colors.txt" in the current folder.
i32 color_table_load();

// Looks a name up, exactly. The first entry of that name wins.
//   rgb_out   three values 0..1, untouched when the name is not found
// Returns 0 when found, else 1.
i32 color_lookup(const char *name, f32 rgb_out[3]);

// The name of the table that was probably meant by one that is not there; null when none is near. Lives as
// long as the table.
const char *color_nearest(const char *name);

// Empties the table and frees its entries.
void color_table_free();
