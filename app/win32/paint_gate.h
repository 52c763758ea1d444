// paint_gate.h: who may take the OpenGL context while a run is going on. The worker holds it but for the
// moments when it asks for a repaint; a paint that the system asks for at any other time must not catch
// the context in between, or the worker would go on without one.
#pragma once
#include "app/app_state.h"

// User-interface thread: whether a paint may take the context now. When it may, paint_gate_leave must
// follow.
bool paint_gate_enter(const AppState *state);
void paint_gate_leave();

// Worker, around its request for a repaint, while it does not hold the context. paint_gate_close waits
// for a paint under way.
void paint_gate_open();
void paint_gate_close();
