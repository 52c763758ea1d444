// menu.h: the enabled state of the menu's commands.
#pragma once
#include "app/app_state.h"

// Greys and enables the menu commands by the program's state. Any thread.
void menu_update(AppState *state);

// Greys all commands but About while a command works. Any thread.
void menu_disable_all(AppState *state);
