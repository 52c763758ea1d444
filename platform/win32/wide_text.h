// wide_text.h: new texts made of others.
#pragma once
#include "platform/base.h"

// Both return a new zero-terminated text that the caller frees with memory_free.
wchar_t *wide_copy(const wchar_t *text);
wchar_t *wide_join(const wchar_t *start, const wchar_t *rest);
