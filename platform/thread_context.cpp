#include "platform/thread_context.h"

static thread_local void *current_context = nullptr;

void thread_context_set(void *context) {
    current_context = context;
}

void *thread_context() {
    return current_context;
}
