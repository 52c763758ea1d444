// process_text.h: small owned narrow texts, zero-terminated, freed with memory_free.
#pragma once

// A copy of a text; null stays null.
char *process_text_copy(const char *text);

// A new text of `first` followed by `second`; neither may be null.
char *process_text_join(const char *first, const char *second);
