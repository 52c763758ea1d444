// film_names.h: names of the films of a stack that tell them apart, for files that are read by name.
#pragma once
#include "platform/owned.h"
#include "process/stack.h"

struct FilmNames {
    char **items;  // one a slot, clean UTF-8 on one line; null where the slot is empty; owned
    i32 count;
};

// The films as the stack has them: each has its legend name, or that of its material where it has none. Of
// several with one name those in higher slots are "OXIDE (2)", "OXIDE (3)" and so on. Freed with
// film_names_free. Lack of memory ends the program.
FilmNames film_names_create(const Stack *stack);

// Frees what the record holds; it is then empty.
void film_names_free(FilmNames *names);

// The owner of what a local record holds.
template <>
struct Freed<FilmNames> {
    void operator()(FilmNames *names) const { film_names_free(names); }
};
