// batch_data.h: find and load the installed files: the colour names and the shader programs.
// Failures are told on standard error.
#pragma once
#include "app/app_state.h"
#include "app/batch/batch_options.h"

// Loads the colour names. Returns BATCH_DONE or BATCH_USAGE.
//   data_folder   where the file lies; null for the usual places (current folder, folder of the
//                 program, installed data folder)
BatchStatus batch_load_colors(const char *data_folder);

// Makes the OpenGL context current here and loads the shader programs into the state.
// Returns BATCH_DONE or BATCH_NO_GRAPHICS; undone by batch_graphics_end in both cases.
BatchStatus batch_graphics_start(AppState *state, const char *data_folder);
void batch_graphics_end(AppState *state);
