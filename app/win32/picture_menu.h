// picture_menu.h: the menu that a right click on the picture opens, and what it remembers from start to
// start. User-interface thread.
#pragma once
#include <windows.h>

#include "app/app_state.h"

// Beyond the ids of the menu bar.
inline constexpr WORD PICTURE_SMOOTH = 20;

// Reads what was chosen last, from "window.ini" in the data folder; a file that is missing or garbled leaves
// everything off.
void picture_menu_load(const AppState *state);

// Opens the menu, for WM_CONTEXTMENU of the render window.
//   place   of the pointer, as the message has it: both halves -1 when the menu was asked for by a key
void picture_menu_open(HWND render_window, LPARAM place);

// Does an entry of the menu: shows the picture anew and keeps the choice.
void picture_menu_command(AppState *state, WORD id);
