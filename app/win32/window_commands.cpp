#include "app/win32/window_commands.h"

#include <cassert>

#include "app/commands.h"
#include "app/win32/picture_menu.h"
#include "app/win32/win32_desktop.h"
#include "platform/thread_role.h"

static void do_command(AppState *state, WORD id) {
    switch (id) {
        case MENU_RUN: run_command(state); break;
        case MENU_STOP: stop_command(state); break;
        case MENU_LOAD_GDS: load_gds_command(state); break;
        case MENU_SAVE_IMAGES: save_images_command(state); break;
        default: picture_menu_command(state, id); break;
    }
}

bool window_command(AppState *state, WORD id) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    if (id == MENU_ABOUT) {
        message_box_about();
        return true;
    }
    const bool known = id == MENU_RUN || id == MENU_STOP || id == MENU_LOAD_GDS || id == MENU_SAVE_IMAGES ||
                       picture_menu_has(id);
    if (known && !window_is_busy()) {
        g_desktop->commands.under_way = true;
        do_command(state, id);
        g_desktop->commands.under_way = false;
    }
    return known;
}

bool window_is_busy() {
    return g_desktop->commands.under_way;
}

bool window_accepts_files(const AppState *state) {
    return !window_is_busy() && state->run_active == 0;
}
