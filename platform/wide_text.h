// wide_text.h: new wide texts made of others.
#pragma once
#include "platform/owned.h"

// A copy of a zero-terminated text. Lack of memory ends the program.
WideText wide_copy(const wchar_t *text);

// One text behind the other, both zero-terminated. Lack of memory ends the program.
WideText wide_join(const wchar_t *start, const wchar_t *rest);
