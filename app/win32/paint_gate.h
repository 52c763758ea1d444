// paint_gate.h: who may take the OpenGL context while a run is going on. The worker holds it but for the
// moments when it asks for a repaint; a paint that the system asks for at any other time must not catch
// the context in between, or the worker would go on without one.
#pragma once
#include <atomic>

#include "app/app_state.h"

enum GateState {
    GATE_SHUT = 0,
    GATE_OPEN,
    GATE_PAINTING,
};

struct PaintGate {
    std::atomic<i32> state;  // GateState
};

// Whether a paint may take the context now. When it may, paint_gate_leave must follow. User-interface thread.
bool paint_gate_enter(const AppState *state);

// The paint has given the context back. User-interface thread.
void paint_gate_leave();

// Lets paints take the context. Worker, before its request for a repaint, when it does not hold the context.
void paint_gate_open();

// Waits for a paint under way; from then on none takes the context. Worker, after that request.
void paint_gate_close();
