#include "app/commands.h"
#include "app/frontend.h"

void menu_update(AppState *state) {
    // `running` alone would not do: a worker that has just been started sets it itself, and this thread and
    // that one would then enable and grey the same commands in any order.
    const bool idle = state->running == 0 && state->run_active == 0;
    frontend_menu_enable(state, MENU_SAVE_IMAGES, idle && state->image_count > 0);
    frontend_menu_enable(state, MENU_RUN, idle && state->layout != nullptr);
    frontend_menu_enable(state, MENU_STOP, !idle && state->stop_requested == 0);
    frontend_menu_enable(state, MENU_LOAD_GDS, idle);
    frontend_menu_enable(state, MENU_ABOUT, true);
    frontend_menu_redraw(state);
}

void menu_disable_all(AppState *state) {
    frontend_menu_enable(state, MENU_SAVE_IMAGES, false);
    frontend_menu_enable(state, MENU_RUN, false);
    frontend_menu_enable(state, MENU_STOP, false);
    frontend_menu_enable(state, MENU_LOAD_GDS, false);
    frontend_menu_redraw(state);
}
