// owned_file.h: the owner of an open file, for functions that leave in several ways. Where the result of
// closing matters (a file that is written), `release` it and close it.
#pragma once
#include <cstdio>
#include "platform/owned.h"

template <>
struct Freed<std::FILE> {
    void operator()(std::FILE *file) const { static_cast<void>(std::fclose(file)); }
};

using OwnedFile = Owned<std::FILE>;
