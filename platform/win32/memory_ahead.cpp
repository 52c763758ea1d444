#include "platform/memory_ahead.h"

#include <cassert>

// The system has no call that makes fresh pages ready without writing to them.
MemoryAhead *memory_ahead_create() {
    return nullptr;
}

void memory_ahead_ask(MemoryAhead *ahead, void *begin, i64 size) {
    assert(begin != nullptr && size >= 0);
    static_cast<void>(ahead);
    static_cast<void>(begin);
    static_cast<void>(size);
}

void memory_ahead_settle(MemoryAhead *ahead) {
    static_cast<void>(ahead);
}

void memory_ahead_free(MemoryAhead *ahead) {
    static_cast<void>(ahead);
}
