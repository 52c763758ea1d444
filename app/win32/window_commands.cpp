#include "app/win32/window_commands.h"

#include "app/commands.h"
#include "app/win32/message_box.h"
#include "app/win32/picture_menu.h"

static bool busy = false;

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
    if (id == MENU_ABOUT) {
        message_box_about();
        return true;
    }
    const bool known = id == MENU_RUN || id == MENU_STOP || id == MENU_LOAD_GDS || id == MENU_SAVE_IMAGES ||
                       id == PICTURE_SMOOTH;
    if (known && !busy) {
        busy = true;
        do_command(state, id);
        busy = false;
    }
    return known;
}

bool window_is_busy() {
    return busy;
}

bool window_accepts_files(const AppState *state) {
    return !busy && state->run_active == 0;
}
