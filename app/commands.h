// commands.h: the commands of the menu. User-interface thread, unless told otherwise. Load, run and save
// do nothing while a run is going on.
#pragma once
#include "app/app_state.h"

// Greys and enables the menu commands by the program's state. Any thread.
void menu_update(AppState *state);

// Greys all commands but About while a command works.
void menu_disable_all(AppState *state);

// Asks for a layout and loads it. A failed load leaves the previous layout in force.
void load_gds_command(AppState *state);

// Asks for a process file, sets the run up and starts the worker, which takes the OpenGL context
// over until run_done. Faults leave the previous run's stack and pictures in place.
// Returns 0 when the worker was started, else 1 (cancelled, or faults told on the console).
i32 run_command(AppState *state);

// Asks the worker to end after the step under way.
void stop_command(AppState *state);

// What the user-interface thread does when the worker is through: takes the OpenGL context back,
// then either cleans up (a close was pending; returns 1: the program should end) or tells the user
// how to browse (returns 0).
i32 run_done(AppState *state);

// The next (direction > 0) or previous picture, wrapping at both ends; sets the title. With no
// picture nothing happens. Returns 1 when the render area should be repainted.
i32 browse_images(AppState *state, i32 direction);

// Writes every picture of the last run, and the extracted polygons, into a folder: output_folder
// with its parents when it is set, else a new time-stamped one. Sets save_failed. What cannot be written does
// not keep the rest from being written; the user is then asked for another folder, until everything is saved
// or the user cancels. With a picture_folder, which is then the output_folder, the pictures are there
// already.
void save_images_command(AppState *state);

// The folder that "Save images" writes into: output_folder when it is set, else the path of the last
// process file without its extension, a blank and the local time ("cmos 2024-05-01 13-45-10").
// A new string, freed with wstring_free.
WString *output_folder_name(const AppState *state);

// The second of the two, for a process file that need not have been run.
WString *stamped_folder_name(const wchar_t *process_path);

// Writes the extracted polygons of the last run as "Polygon.gds" into a folder. Returns 0 or 1.
i32 save_polygons(const AppState *state, const wchar_t *folder);

// Makes an empty list of pictures with room for one of every step, so that the worker never moves the list
// while the user browses in it. The list before must have been freed.
void images_create(AppState *state, i32 step_count);

// Frees the pictures and their list; the list is then empty.
void images_free(AppState *state);

// Frees the data of runs: layout, stack, framebuffer, camera, pictures, paths, fonts. The OpenGL
// context, if any, must be current here. Shader programs, colour names, data folder and context stay.
void app_cleanup(AppState *state);
