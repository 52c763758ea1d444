// value_hints.h: hints about the numbers, names and colours of a command line (see hints.h).
#pragma once
#include "process/line_words.h"
#include "process/reader_state.h"

// The part of line_hints that looks at the values.
//   words   of a line with a known command
//   units   of the lengths in it
void value_hints(const LineWords *words, i32 line_number, UnitMode units);
