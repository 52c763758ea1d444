// hints.h: what a process file holds that is read otherwise than it was probably meant, one line each to
// diagnostic_write: "PATH:LINE: what is the matter and what to do". Hints change no result.
#pragma once
#include "log/shown_text.h"
#include "platform/base.h"

// After so many hints of one file only their number is told.
inline constexpr i32 HINTS_MOST = 50;

// Begins the hints of a file.
//   path   as the user gave it; has to live until hints_end
void hints_start(const wchar_t *path);

// One hint.
//   line     number of the line; 0 for the file as a whole
//   format   wide printf format ("%ls" takes wide text) without a line end; texts from the file go through
//            shown_text
void hint_write(i32 line, const wchar_t *format, ...);

// Whether further hints are only counted; what costs time to find need not be looked for then.
bool hints_full();

// Tells how many hints were too many.
void hints_end();
