// main_window.h: the window and where its parts lie: menu bar, and below it render area, console and status
// bar. The user can move the divider between render area and console, and finds it there at the next start.
// Main thread.
#pragma once
#include "app/app_state.h"

// Makes the window with all its parts, not yet shown. Sets the handles and,
// from then on, the size of the render area in the state.
void main_window_create(AppState *state);
void main_window_show(AppState *state);

// Remembers the divider's place. A window that was not made is fine.
void main_window_destroy(AppState *state);
