#include "app/win32/paint_gate.h"

#include <cassert>
#include <thread>

#include "app/win32/win32_desktop.h"
#include "platform/thread_role.h"

bool paint_gate_enter(const AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW));
    if (state->run_active == 0 || state->export_job != nullptr) {
        return true;  // no worker draws
    }
    i32 expected = GATE_OPEN;
    return g_desktop->gate.state.compare_exchange_strong(expected, GATE_PAINTING);
}

void paint_gate_leave() {
    assert(thread_role_fits(THREAD_WINDOW));
    i32 expected = GATE_PAINTING;
    g_desktop->gate.state.compare_exchange_strong(expected, GATE_OPEN);
}

void paint_gate_open() {
    assert(thread_role_fits(THREAD_WORKER));
    g_desktop->gate.state = GATE_OPEN;
}

void paint_gate_close() {
    assert(thread_role_fits(THREAD_WORKER));
    i32 expected = GATE_OPEN;
    while (!g_desktop->gate.state.compare_exchange_weak(expected, GATE_SHUT)) {
        expected = GATE_OPEN;
        std::this_thread::yield();
    }
}
