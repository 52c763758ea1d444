// batch_graphics.h: what pictures need, made ready before anything is read. Failures are told on standard
// error.
#pragma once
#include "app/app_state.h"
#include "app/batch/batch_options.h"

// Makes the OpenGL context current here and loads the shader programs into the state. Returns BATCH_DONE or
// BATCH_NO_GRAPHICS; in both cases app_end frees the programs and the caller the context.
//   picture_width   pixels that pictures are to be wide; graphics that cannot draw them are none
BatchStatus batch_graphics_start(AppState *state, i32 picture_width);
