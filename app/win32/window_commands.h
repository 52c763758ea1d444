// window_commands.h: the commands of the menus, and the one rule about them: a command is through before the
// next one starts, though its dialogs keep the message loop running. User-interface thread.
#pragma once
#include <windows.h>

#include "app/app_state.h"

struct CommandRule {
    bool under_way;  // a command is
};

// Does the command of a menu by its id. Returns whether there is one of that id; it is passed over while
// another one is under way, but for "About".
bool window_command(AppState *state, WORD id);

// Whether a command is under way.
bool window_is_busy();

// Whether files can be opened now: no command is under way, and no run.
bool window_accepts_files(const AppState *state);
