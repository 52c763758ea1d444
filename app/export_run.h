// export_run.h: what a run writes besides its pictures, while it is under way: files of each step into the
// folder of its pictures, named as the picture of the step with an ending of their own; tables of the whole
// run beside them; and a page. The steps are those whose pictures are asked for. A file that cannot be
// written is told and counted, and loses nothing else.
#pragma once
#include "platform/owned.h"

struct AppState;
struct ExportRun;

// Makes ready what state->export_wish asks for of the run whose stack the state has just got; files of steps
// go to state->output_folder, which is there. Null when nothing is asked for. Freed with export_run_free.
// User-interface thread, before the worker starts.
ExportRun *export_run_create(const AppState *state);

void export_run_free(ExportRun *run);  // takes null

template <>
struct Freed<ExportRun> {
    void operator()(ExportRun *run) const { export_run_free(run); }
};

// Writes the files of a step whose heights the stack has. The worker.
void export_run_step(ExportRun *run, const AppState *state, i32 step_index);

// Writes the tables and the page of the steps so far, and tells the console what was written. The worker,
// when it has run its last step.
void export_run_end(ExportRun *run);

// The same for a program that is about to end while the worker is at a step that does not end: nothing is
// told on the console, and the worker writes nothing more. User-interface thread.
void export_run_leave(ExportRun *run);

// Files that could not be written; read when the worker is through.
i32 export_run_failures(const ExportRun *run);
