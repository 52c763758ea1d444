// wide_text.h: new wide texts made of others.
#pragma once
#include "platform/owned.h"

// A copy of a zero-terminated text. Lack of memory ends the program.
WideText wide_copy(const wchar_t *text);

// The characters of a text in bytes: UTF-8 by custom; a byte that is none is taken as the Latin-1 character
// of its number. Lack of memory ends the program.
WideText wide_from_bytes(const char *bytes);

// One text behind the other, both zero-terminated. Lack of memory ends the program.
WideText wide_join(const wchar_t *start, const wchar_t *rest);
