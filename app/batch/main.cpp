// quarn-batch: the whole job without a window. Loads a layout, runs a process file on it and saves a
// picture of every step.
#include <cstdlib>

#include "app/batch/batch_folders.h"
#include "app/batch/batch_frontend.h"
#include "app/batch/batch_graphics.h"
#include "app/batch/batch_options.h"
#include "app/batch/batch_output.h"
#include "app/batch/list_layers.h"
#include "app/batch/starter.h"
#include "app/commands.h"
#include "app/picture_name.h"
#include "app/startup.h"
#include "gds/gds_overview.h"
#include "gds/gds_write.h"
#include "log/log.h"
#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/whole_file.h"
#include "process/process_file.h"
#include "sim/stack_setup.h"

// Loads the layout as "Load GDS" does.
static BatchStatus load_layout(AppState *state) {
    load_gds_command(state);
    if (batch_interrupted()) {
        return BATCH_INTERRUPTED;
    }
    return state->load_result == 0 ? BATCH_DONE : BATCH_LAYOUT_FAILED;
}

// The list of the cells is part of loading.
static BatchStatus list_cells(AppState *state) {
    const BatchStatus status = load_layout(state);
    if (status == BATCH_DONE) {
        gds_overview(state->layout);
    }
    return status;
}

// What goes to standard output is the answer alone, so that it can be taken as it is.
static BatchStatus answer(AppState *state, const BatchOptions *options) {
    batch_console_to(BATCH_CONSOLE_NOWHERE);
    const BatchStatus status = load_layout(state);
    if (status != BATCH_DONE) {
        return status;
    }
    return options->mode == BATCH_LAYERS ? list_layers(state->layout, options->cell_name)
                                         : starter_print(state->layout, options->cell_name);
}

// Writes "Polygon.gds" only; nothing of "Save images" is shown.
static bool save_polygons_only(const AppState *state) {
    return save_polygons(state, wstring_text(state->output_folder)) == 0;
}

// Ends the program beside a worker whose step takes too long. The pictures before it are written already, and
// nobody changes the polygons while a run is going on.
[[noreturn]] static void leave_run(const AppState *state) {
    diagnostic_write(L"the step under way takes too long to wait for; the run ends without it");
    save_polygons_only(state);
    whole_files_end();
    diagnostic_write(L"interrupted");
    batch_output_finish();
    memory_end_beside_threads(BATCH_INTERRUPTED);
}

// Runs the process file as "Run Process" does, to its end or to the stop that an interrupt asks for. Once
// the worker has started, at least its first step is done, unless it takes too long after an interrupt.
static BatchStatus run_process(AppState *state) {
    if (run_command(state) != 0) {
        if (state->run_failure == RUN_NO_DUMP) {
            return BATCH_WRITE_FAILED;
        }
        return batch_interrupted() ? BATCH_INTERRUPTED : BATCH_PROCESS_FAILED;
    }
    if (!batch_wait_for_run(state)) {
        leave_run(state);
    }
    return BATCH_DONE;
}

// Writes what the run has not written already. Without a single picture the worker has said why.
static bool save_rest(AppState *state) {
    if (state->image_count > 0) {
        save_images_command(state);
    }
    return state->save_failed == 0;
}

// How the run itself went.
static BatchStatus run_status(const AppState *state, bool with_pictures) {
    if (state->run_failure == RUN_NO_MEMORY) {
        return BATCH_NO_MEMORY;
    }
    if (state->run_failure == RUN_NO_GRAPHICS || (with_pictures && state->image_count == 0)) {
        return BATCH_NO_GRAPHICS;
    }
    return state->stack->dump_failed == 0 ? BATCH_DONE : BATCH_WRITE_FAILED;
}

// The whole job. What a run has made that was interrupted or ended early is saved.
static BatchStatus run_and_save(AppState *state, const BatchOptions *options) {
    BatchStatus status = batch_folders_make(state, options);
    if (status == BATCH_DONE) {
        status = load_layout(state);
    }
    if (status == BATCH_DONE) {
        status = run_process(state);
    }
    if (status != BATCH_DONE) {
        return status;
    }
    const bool saved = options->no_images ? save_polygons_only(state) : save_rest(state);
    status = run_status(state, !options->no_images);
    if (status != BATCH_DONE || !saved) {
        return status != BATCH_DONE ? status : BATCH_WRITE_FAILED;
    }
    return batch_interrupted() ? BATCH_INTERRUPTED : BATCH_DONE;
}

// Reports the faults of the process file alone.
static void check_process_file(const wchar_t *path) {
    const Owned<Stack> stack(memory_new_zeroed<Stack>());
    process_read_file(stack.get(), path);
}

// Reports every fault of both files. A layout that does not load leaves the set-up untried.
static BatchStatus check_files(AppState *state, const BatchOptions *options) {
    BatchStatus status = load_layout(state);
    if (status == BATCH_INTERRUPTED) {
        return status;
    }
    const WideText path = platform_wide_from_system(options->process_path);
    if (status == BATCH_LAYOUT_FAILED) {
        check_process_file(path.get());
    } else {
        const Owned<Stack> stack(stack_create(path.get(), state->layout));
        status = stack != nullptr ? BATCH_DONE : BATCH_PROCESS_FAILED;
        if (stack != nullptr) {
            picture_names_check(stack.get(), options->format);
            gds_write_unreadable(stack->polygons, L"Polygon.gds");
        }
    }
    return batch_interrupted() ? BATCH_INTERRUPTED : status;
}

// Everything after the command line is understood. Graphics are made ready before anything is read,
// so that a long job does not fail at its first picture.
static BatchStatus work(AppState *state, const BatchOptions *options) {
    const bool with_pictures = options->mode == BATCH_RUN && !options->no_images;
    if (with_pictures) {
        batch_console_to(BATCH_CONSOLE_ERROR);
        const BatchStatus status = batch_graphics_start(state);
        if (status != BATCH_DONE) {
            return status;
        }
    }
    const bool with_process = options->mode == BATCH_RUN || options->mode == BATCH_CHECK;
    if (with_process && app_load_colors(state) != 0) {
        return BATCH_USAGE;
    }
    batch_console_to(BATCH_CONSOLE_OUTPUT);
    switch (options->mode) {
        case BATCH_CELLS: return list_cells(state);
        case BATCH_LAYERS:
        case BATCH_STARTER: return answer(state, options);
        case BATCH_CHECK: return check_files(state, options);
        default: return run_and_save(state, options);
    }
}

static BatchStatus run_with_options(const BatchOptions *options) {
    AppState state;
    app_start(&state, &BATCH_FRONTEND, options->data_folder);
    state.image_format = options->format;
    batch_frontend_start(options->layout_path, options->process_path);

    const BatchStatus status = work(&state, options);
    if (status == BATCH_INTERRUPTED) {
        diagnostic_write(L"interrupted");
    }

    batch_console_to(BATCH_CONSOLE_NOWHERE);  // cleaning up is not part of the text of the commands
    app_cleanup(&state);
    app_end(&state);
    platform_gl_free(state.gl_context);
    batch_frontend_end();
    return status;
}

int main(int argc, char **argv) {
    argv = platform_arguments(&argc, argv);
    batch_streams_open();
    BatchOptions options;
    BatchStatus status = BATCH_DONE;
    switch (batch_options_parse(argc, argv, &options)) {
        case BATCH_PARSE_OK: status = run_with_options(&options); break;
        case BATCH_PARSE_END: break;
        case BATCH_PARSE_WRONG: return BATCH_USAGE;
    }
    if (!batch_output_finish() && status == BATCH_DONE) {
        status = BATCH_WRITE_FAILED;
    }
    return status;
}
