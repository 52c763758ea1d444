// memory_ahead.h: pages of fresh memory made ready by a thread of its own, shortly before they are used: the
// system takes as long to find and clear them as it takes to fill them. Only speed depends on it; contents
// stay as they are.
#pragma once
#include "platform/owned.h"

// Where memory is made ready, with its thread. Null is one that does nothing, and every function takes it.
struct MemoryAhead;

// Null where the system has no such way or refuses a thread.
MemoryAhead *memory_ahead_create();

// Asks for the pages of a part of a block. They must not be moved or freed before memory_ahead_settle. May be
// forgotten when too much is asked for.
void memory_ahead_ask(MemoryAhead *ahead, void *begin, i64 size);

// Forgets what has been asked for and is not done, and waits until nothing is under way.
void memory_ahead_settle(MemoryAhead *ahead);

// Settles and ends the thread.
void memory_ahead_free(MemoryAhead *ahead);

template <>
struct Freed<MemoryAhead> {
    void operator()(MemoryAhead *ahead) const { memory_ahead_free(ahead); }
};
