#include "app/batch/batch_run.h"

#include <cassert>

#include "app/batch/batch_frontend.h"
#include "app/commands.h"
#include "app/export_run.h"

bool batch_save_polygons(const AppState *state) {
    return save_polygons(state, wstring_text(state->output_folder)) == 0;
}

static i32 prepare(AppState *state, std::mutex *set_up_lock) {
    if (set_up_lock == nullptr) {
        return run_command(state);
    }
    const std::lock_guard<std::mutex> lock(*set_up_lock);
    return run_command(state);
}

// Once the worker has started, at least its first step is done, unless it takes too long after an interrupt.
static BatchStatus run_process(AppState *state, std::mutex *set_up_lock, bool *left) {
    if (prepare(state, set_up_lock) != 0) {
        if (state->run_failure == RUN_NO_DUMP) {
            return BATCH_WRITE_FAILED;
        }
        return batch_interrupted() ? BATCH_INTERRUPTED : BATCH_PROCESS_FAILED;
    }
    *left = !batch_wait_for_run(state);
    return *left ? BATCH_INTERRUPTED : BATCH_DONE;
}

// Writes what the run has not written already. Without a single picture that was asked for the worker has
// said why.
static bool save_rest(AppState *state) {
    const bool made_none = state->image_count == 0;
    if (!made_none || (state->step_wanted != nullptr && state->run_failure == RUN_NO_FAILURE)) {
        save_images_command(state);
    }
    return state->save_failed == 0;
}

// How the run itself went.
static BatchStatus run_status(const AppState *state, bool with_pictures) {
    if (state->run_failure == RUN_NO_MEMORY) {
        return BATCH_NO_MEMORY;
    }
    const bool made_none = with_pictures && state->image_count == 0 && state->step_wanted == nullptr;
    if (state->run_failure == RUN_NO_GRAPHICS || made_none) {
        return BATCH_NO_GRAPHICS;
    }
    const bool written = state->stack->dump_failed == 0 && export_run_failures(state->export_run) == 0;
    return written ? BATCH_DONE : BATCH_WRITE_FAILED;
}

BatchStatus batch_run(AppState *state, const BatchOptions *options, std::mutex *set_up_lock, bool *left) {
    assert(state != nullptr && options != nullptr && left != nullptr);
    BatchStatus status = run_process(state, set_up_lock, left);
    if (status != BATCH_DONE) {
        return status;
    }
    const bool saved = options->no_images ? batch_save_polygons(state) : save_rest(state);
    status = run_status(state, !options->no_images);
    if (status != BATCH_DONE || !saved) {
        return status != BATCH_DONE ? status : BATCH_WRITE_FAILED;
    }
    return batch_interrupted() ? BATCH_INTERRUPTED : BATCH_DONE;
}
