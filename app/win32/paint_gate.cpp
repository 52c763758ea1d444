#include "app/win32/paint_gate.h"

#include <atomic>
#include <thread>

enum GateState { GATE_SHUT, GATE_OPEN, GATE_PAINTING };

static std::atomic<i32> gate{GATE_SHUT};

bool paint_gate_enter(const AppState *state) {
    if (state->run_active == 0) {
        return true;  // there is no worker
    }
    i32 expected = GATE_OPEN;
    return gate.compare_exchange_strong(expected, GATE_PAINTING);
}

void paint_gate_leave() {
    i32 expected = GATE_PAINTING;
    gate.compare_exchange_strong(expected, GATE_OPEN);
}

void paint_gate_open() {
    gate = GATE_OPEN;
}

void paint_gate_close() {
    i32 expected = GATE_OPEN;
    while (!gate.compare_exchange_weak(expected, GATE_SHUT)) {
        expected = GATE_OPEN;
        std::this_thread::yield();
    }
}
