// page_base64.h: bytes as text that may stand anywhere in HTML.
#pragma once
#include <cstdio>
#include "platform/base.h"

// Writes bytes as base64 with its padding, in one line, to a file that is open for binary writing; what goes
// wrong with it is left to the caller, who asks std::ferror.
void page_base64_write(const u8 *bytes, i64 size, std::FILE *file);
