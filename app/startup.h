// startup.h: the start and the end of the application, the same for every front end, and what happens when
// the user closes the window. User-interface thread.
#pragma once
#include "app/app_state.h"

// The first act of every program, and the only place that sets g_app: puts the state as it is at start there,
// names this thread the user interface's, and from here on the front end's functions take the calls upward,
// the texts and lack of memory. Undone by app_end.
//   frontend      kept, not copied; it must outlive app_end
//   data_folder   where the installed files lie, as the command line names it; null for the usual places
//                 (app/data_files.h)
void app_start(AppState *state, const Frontend *frontend, const char *data_folder);

// Opens what a program with a window keeps open: the user's data folder ("Dalvine" and in it "Quarn" in the
// folder where the system keeps a user's program data, made if need be; sets appdata_path), the log file in
// it, and the colour names. Returns 0, or 1 after telling why in a message box.
i32 app_open_files(AppState *state);

// Loads the colour names alone. Returns 0, or 1 after telling why in a message box.
i32 app_load_colors(AppState *state);

// Loads the two shader programs, which app_end frees; the OpenGL context must be current. What is missing or
// broken is told on the console, and the program goes on. A missing file is a diagnostic line for each place.
void app_load_shaders(AppState *state);

// The same for a program that is of no use without its shaders: a diagnostic line says why it has no
// graphics. Returns 0, or 1 when a shader program is missing. Lines that memory was lacking for end the
// program.
i32 app_require_shaders(AppState *state);

// The first lines of the console of a program with a window.
void app_welcome();

// Joins the last worker, which must have told its end, and frees what app_start and the functions above have
// made; the data of runs is app_cleanup's. The OpenGL context, if any, must be current, and is left to the
// front end. Texts go nowhere from here on.
void app_end(AppState *state);

// The user closes the window. Returns 1 when the program should end, its run data freed; 0 during a
// run, whose end does the same (run_done returns 1).
i32 app_close(AppState *state);
