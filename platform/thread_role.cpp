#include "platform/thread_role.h"

#include <cassert>

static thread_local ThreadRole thread_role = THREAD_UNNAMED;

void thread_role_set(ThreadRole role) {
    assert(role == THREAD_UNNAMED || role == THREAD_WINDOW || role == THREAD_WORKER);
    thread_role = role;
}

bool thread_role_fits(ThreadRole role) {
    return thread_role == THREAD_UNNAMED || thread_role == role;
}
