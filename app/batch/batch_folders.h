// batch_folders.h: where a run writes: folders, and the path of its page, made and tried before anything is
// read. Those that the run has made and that are empty when the program ends, however it ends by itself, are
// removed again.
#pragma once
#include "app/app_state.h"
#include "app/batch/batch_options.h"

// Makes the folders of a run (--output or the time-stamped one, --dump) and tries whether files can be
// written in them; sets output_folder, dump_folder, the path of --report where there are no cuts and, where
// pictures are made, picture_folder. Two runs
// never get the same time-stamped folder: the second one's name ends in "-2". Returns BATCH_DONE, or
// BATCH_WRITE_FAILED after telling why not.
BatchStatus batch_folders_make(AppState *state, const BatchOptions *options);

// Makes the folder of a cut below the output folder of `main`, which may be `state` itself, and below the
// folder of --dump where there is one; without it the dump goes beside the pictures. Sets output_folder,
// dump_folder, the path of the cut's page where one is asked for and, where pictures are made, picture_folder
// of `state`. False after telling why not. Threads
// may do so at a time when their names differ.
bool batch_folder_below(AppState *state, const AppState *main, const BatchOptions *options, const char *name);
