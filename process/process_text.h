// process_text.h: small narrow texts, zero-terminated. A field of a record takes them over with release() and
// frees them with memory_free.
#pragma once
#include "platform/owned.h"

// A copy of a text; null stays null. Lack of memory ends the program.
NarrowText process_text_copy(const char *text);

// A new text of `first` followed by `second`; neither may be null.
NarrowText process_text_join(const char *first, const char *second);
