#include <cassert>

#include "platform/memory.h"

// Large pages are for programs with a privilege of their own here.
void memory_expect_use(void *block, i64 size) {
    assert(block != nullptr && size >= 0);
    static_cast<void>(block);
    static_cast<void>(size);
}
