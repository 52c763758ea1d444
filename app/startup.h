// startup.h: what every program with a window does before its window is there, after it is gone, and when the
// user closes it. User-interface thread.
#pragma once
#include "app/app_state.h"

// Finds, or creates, the per-user data folder: "Dalvine" and in it "Quarn" in the folder where the
// system keeps a user's program data. Returns 0 and sets appdata_path, or 1.
i32 appdata_folder_init(AppState *state);

// The first steps of a program: the state zeroed and put into g_app, the data folder, the log file, the
// colour names. Returns 0, or 1 after telling why in a message box.
//   colors_path   the colour names file
i32 app_start(AppState *state, const wchar_t *colors_path);

// Loads the two shader programs; a file that is missing or broken is told on the console and the
// program goes on. The OpenGL context must be current.
void app_load_shaders(AppState *state, const wchar_t *surface_path, const wchar_t *point_path);

// The first lines of the console.
void app_welcome();

// Frees what app_start and app_load_shaders made. The OpenGL context, if any, must be current.
void app_end(AppState *state);

// The user closes the window. Returns 1 when the program should end, its run data freed; 0 during a
// run, whose end does the same (run_done returns 1).
i32 app_close(AppState *state);
