// thread_context.h: one pointer that a thread carries, and that the threads which it starts inherit. Several
// runs at a time tell their texts apart by it, since the sinks of texts come without a record to look into.
#pragma once

// Gives the calling thread its pointer, and with it those that it starts from here on.
void thread_context_set(void *context);

// The pointer of the calling thread; null where none was set.
void *thread_context();
