// save_command.h: the command "Save images".
#pragma once
#include "app/app_state.h"

// Writes every picture of the last run, and the extracted polygons, into a folder: output_folder
// with its parents when it is set, else a new time-stamped one. Sets save_failed. What cannot be written does
// not keep the rest from being written; the user is then asked for another folder, until everything is saved
// or the user cancels. With a picture_folder, which is then the output_folder, the pictures are there
// already. During a run nothing happens. User-interface thread.
void save_images_command(AppState *state);

// The folder that "Save images" writes into: output_folder when it is set, else the path of the last
// process file without its extension, a blank and the local time ("cmos 2024-05-01 13-45-10").
// A new string, freed with wstring_free.
WString *output_folder_name(const AppState *state);

// The second of the two, for a process file that need not have been run. A new string, freed with
// wstring_free.
WString *stamped_folder_name(const wchar_t *process_path);

// Writes the extracted polygons of the last run, or of the one under way, as "Polygon.gds" into a folder.
// Returns 0 or 1.
i32 save_polygons(const AppState *state, const wchar_t *folder);
