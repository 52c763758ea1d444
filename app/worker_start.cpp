#include "app/worker_start.h"

#include <cassert>

#include "platform/thread_role.h"

bool worker_start(AppState *state, PlatformThreadFunction function) {
    assert(state != nullptr && state->run_active == 0 && thread_role_fits(THREAD_WINDOW));
    if (state->worker_thread != nullptr) {
        platform_thread_join(state->worker_thread);
    }
    state->run_active = 1;
    state->worker_thread = platform_thread_start(function, state);
    if (state->worker_thread == nullptr) {
        state->run_active = 0;
    }
    return state->worker_thread != nullptr;
}
