// cut_run.h: one process on several sections of a layout, several at a time.
#pragma once
#include "app/app_state.h"
#include "app/batch/batch_options.h"
#include "app/batch/cut_list.h"

// Checks the process file once, runs it on each cut into a folder of its name below the output folder, and
// tells how each ended. What a run prints goes to "console.txt" in its folder, its dump beside it. A cut that
// fails stops no other. The layout is loaded and the output folder is there; state->gl_context draws, beside
// more like it, unless no pictures are wanted.
//   left   as in batch_run: a worker is still at its step
// BATCH_DONE; BATCH_PROCESS_FAILED when a cut failed or the process file has faults; BATCH_INTERRUPTED;
// BATCH_NO_GRAPHICS when there is not one context to draw with.
BatchStatus cuts_run(AppState *state, const BatchOptions *options, const CutList *cuts, bool *left);
