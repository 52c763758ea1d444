// wide_text.h: new wide texts made of others.
#pragma once
#include "platform/owned.h"

// Zero-terminated copies. Lack of memory ends the program.
WideText wide_copy(const wchar_t *text);
WideText wide_join(const wchar_t *start, const wchar_t *rest);
