// batch_run.h: one run from its process file to the saved pictures, on the calling thread.
#pragma once
#include <mutex>
#include "app/app_state.h"
#include "app/batch/batch_options.h"

// Runs the process file as "Run Process" does, to its end or to the stop that an interrupt asks for, and
// saves what the run has made, also when it was interrupted or ended early. The layout is loaded, and the
// folders are there.
//   set_up_lock   held while the run is prepared, which one run does at a time; null where there is one
//   left          set when some seconds after an interrupt the step under way has not ended: its worker is
//                 still at it, so the program has to end beside it
BatchStatus batch_run(AppState *state, const BatchOptions *options, std::mutex *set_up_lock, bool *left);

// Writes "Polygon.gds" only; nothing of "Save images" is shown. False when it cannot be written.
bool batch_save_polygons(const AppState *state);
