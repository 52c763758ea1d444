#include "app/menu.h"

#include <cassert>

#include "app/frontend.h"

void menu_update(AppState *state) {
    assert(state != nullptr && state->frontend != nullptr);
    // `running` alone would not do: a worker that has just been started sets it itself, and this thread and
    // that one would then enable and grey the same commands in any order.
    const bool idle = state->running == 0 && state->run_active == 0;
    state->frontend->menu_enable(state, MENU_SAVE_IMAGES, idle && state->image_count > 0);
    state->frontend->menu_enable(state, MENU_RUN, idle && state->layout != nullptr);
    state->frontend->menu_enable(state, MENU_STOP, !idle && state->stop_requested == 0);
    state->frontend->menu_enable(state, MENU_LOAD_GDS, idle);
    state->frontend->menu_enable(state, MENU_ABOUT, true);
    state->frontend->menu_redraw(state);
}

void menu_disable_all(AppState *state) {
    assert(state != nullptr && state->frontend != nullptr);
    state->frontend->menu_enable(state, MENU_SAVE_IMAGES, false);
    state->frontend->menu_enable(state, MENU_RUN, false);
    state->frontend->menu_enable(state, MENU_STOP, false);
    state->frontend->menu_enable(state, MENU_LOAD_GDS, false);
    state->frontend->menu_redraw(state);
}
