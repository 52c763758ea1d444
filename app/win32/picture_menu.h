// picture_menu.h: the menu of the picture, and what it remembers from start to start. User-interface thread.
#pragma once
#include <windows.h>

#include "app/app_state.h"

// Beyond the ids of the menu bar and of app/picture_commands.h.
inline constexpr WORD PICTURE_SMOOTH = 20;

// Reads what was chosen last, from "window.ini" in the data folder; a file that is missing or garbled leaves
// everything as at first. What the command line wants must stand in the state.
void picture_menu_load(AppState *state);

// Opens the menu, for WM_CONTEXTMENU of the render window, and for that of the main window when a key asks.
//   place   of the pointer, as the message has it: both halves -1 when the menu was asked for by a key
void picture_menu_open(const AppState *state, LPARAM place);

// Whether an id is that of an entry.
bool picture_menu_has(WORD id);

// Does an entry of the menu, and keeps what it chooses.
void picture_menu_command(AppState *state, WORD id);
