// gtk_text.h: the program's wide texts as the window library wants them.
#pragma once
#include "platform/owned.h"

// A text as valid UTF-8: units that are no character (a byte of a file name that is not UTF-8) become U+FFFD.
// Null gives "".
NarrowText gtk_text_from_wide(const wchar_t *text);

// The same with bare line feeds in place of "\r\n".
NarrowText gtk_text_lines_from_wide(const wchar_t *text);
