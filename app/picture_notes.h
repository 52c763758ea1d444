// picture_notes.h: what a picture's file tells of how the picture came about.
#pragma once
#include "app/app_state.h"

// The notes of the picture after a step of the run under way: program, layout and process file (without their
// folders), cell, cut (in the unit of the process file), step, and the real lengths that a pixel stands for
// at the foot of the cut face. The same run gives the same notes. Null when memory is lacking.
//   image_height   of the picture, pixels
ImageNotes *picture_notes_create(const AppState *state, i32 step_index, i32 image_height);
