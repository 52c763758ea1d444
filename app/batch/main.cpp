// quarn-batch: the whole job without a window. Loads a layout, runs a process file on it and saves a
// picture of every step.
#include <cstdlib>
#include <cstring>

#include "app/batch/batch_folders.h"
#include "app/batch/batch_frontend.h"
#include "app/batch/batch_graphics.h"
#include "app/batch/batch_options.h"
#include "app/batch/batch_output.h"
#include "app/batch/batch_run.h"
#include "app/batch/cut_file.h"
#include "app/batch/cut_run.h"
#include "app/batch/list_layers.h"
#include "app/batch/starter.h"
#include "app/commands.h"
#include "app/export_run.h"
#include "app/picture_name.h"
#include "app/startup.h"
#include "gds/gds_overview.h"
#include "gds/gds_write.h"
#include "log/log.h"
#include "log/shown_text.h"
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

// Ends the program beside a worker whose step takes too long. The pictures before it are written already,
// since the last of them had all of that time for it, and nobody changes the polygons while a run is going
// on.
[[noreturn]] static void leave_run() {
    diagnostic_write(L"the step under way takes too long to wait for; the run ends without it");
    whole_files_end();
    diagnostic_write(L"interrupted");
    batch_output_finish();
    memory_end_beside_threads(BATCH_INTERRUPTED);
}

// The run on the section of the process file, or on the only cut there is.
static BatchStatus run_once(AppState *state, const BatchOptions *options, const Cut *cut) {
    SectionChoice section = {};
    if (cut != nullptr) {
        if (!batch_folder_below(state, state, options, cut->name)) {
            return BATCH_WRITE_FAILED;
        }
        section = cut_section(cut);
        state->section = &section;
        state->cut_name = cut->name;
    }
    bool left = false;
    const BatchStatus status = batch_run(state, options, nullptr, &left);
    if (left) {
        batch_save_polygons(state);
        export_run_leave(state->export_run);
        leave_run();
    }
    state->section = nullptr;
    state->cut_name = nullptr;
    return status;
}

static BatchStatus run_cuts(AppState *state, const BatchOptions *options, const CutList *cuts) {
    bool left = false;
    const BatchStatus status = cuts_run(state, options, cuts, &left);
    if (left) {
        leave_run();
    }
    return status;
}

// The whole job. What a run has made that was interrupted or ended early is saved.
static BatchStatus run_and_save(AppState *state, const BatchOptions *options, const CutList *cuts) {
    BatchStatus status = batch_folders_make(state, options);
    if (status == BATCH_DONE) {
        status = load_layout(state);
    }
    if (status != BATCH_DONE) {
        return status;
    }
    state->step_list = options->step_list;
    if (cuts->count > 1) {
        return run_cuts(state, options, cuts);
    }
    return run_once(state, options, cuts->count == 1 ? &cuts->items[0] : nullptr);
}

// Reports the faults of the process file alone.
static void check_process_file(const wchar_t *path, const SectionChoice *section) {
    const Owned<Stack> stack(memory_new_zeroed<Stack>());
    process_read_file(stack.get(), path, section);
}

static BatchStatus check_set_up(AppState *state, const BatchOptions *options, const wchar_t *path,
                                const SectionChoice *section) {
    const Owned<Stack> stack(stack_create(path, state->layout, section));
    if (stack == nullptr) {
        return BATCH_PROCESS_FAILED;
    }
    picture_names_check(stack.get(), IMAGE_FORMATS[options->format].extension);
    gds_write_unreadable(stack->polygons, L"Polygon.gds");
    return BATCH_DONE;
}

// Reports every fault of both files, with each of the cuts. A layout that does not load leaves the set-up
// untried.
static BatchStatus check_files(AppState *state, const BatchOptions *options, const CutList *cuts) {
    const BatchStatus loaded = load_layout(state);
    if (loaded == BATCH_INTERRUPTED) {
        return loaded;
    }
    const WideText path = platform_wide_from_system(options->process_path);
    BatchStatus status = loaded;
    const i32 tries = cuts->count > 0 ? cuts->count : 1;
    for (i32 i = 0; i < tries && !batch_interrupted(); ++i) {
        const Cut *cut = cuts->count > 0 ? &cuts->items[i] : nullptr;
        const SectionChoice section = cut != nullptr ? cut_section(cut) : SectionChoice{};
        const SectionChoice *chosen = cut != nullptr ? &section : nullptr;
        if (cuts->count > 1) {
            console_printf_w(L"--- Cut \"%ls\" ---\r\n\r\n", shown_text(cut->name).text);
        }
        if (loaded == BATCH_LAYOUT_FAILED) {
            check_process_file(path.get(), chosen);
        } else if (check_set_up(state, options, path.get(), chosen) != BATCH_DONE) {
            status = BATCH_PROCESS_FAILED;
        }
    }
    return batch_interrupted() ? BATCH_INTERRUPTED : status;
}

// The cuts that the command line asks for. False after telling what is wrong with them.
static bool read_cuts(const BatchOptions *options, CutList *cuts) {
    bool good = true;
    for (i32 i = 0; i < options->cut_count; ++i) {
        good = cut_list_add_option(cuts, options->cuts[i]) && good;
    }
    if (good && options->cuts_file != nullptr) {
        const WideText path = platform_wide_from_system(options->cuts_file);
        good = cut_file_read(cuts, path.get());
        if (good && cuts->count == 0) {
            diagnostic_write(L"%ls: there are no cuts in it", path.get());
            good = false;
        }
    }
    return good;
}

static bool take_picture_options(AppState *state, const BatchOptions *options) {
    const Owned<WString> fault(picture_options_apply(&options->pictures, state));
    if (fault != nullptr) {
        diagnostic_write(L"%ls", wstring_text(fault.get()));
    }
    return fault == nullptr;
}

// Everything after the command line is understood. Graphics are made ready before anything is read,
// so that a long job does not fail at its first picture.
static BatchStatus work(AppState *state, const BatchOptions *options, const CutList *cuts) {
    const bool with_pictures = options->mode == BATCH_RUN && !options->no_images;
    if (with_pictures) {
        batch_console_to(BATCH_CONSOLE_ERROR);
        const BatchStatus status = batch_graphics_start(state, options->pictures.width);
        if (status != BATCH_DONE) {
            return status;
        }
    }
    const bool with_process = options->mode == BATCH_RUN || options->mode == BATCH_CHECK;
    if (with_process && (app_load_colors(state) != 0 || !take_picture_options(state, options))) {
        return BATCH_USAGE;
    }
    batch_console_to(BATCH_CONSOLE_OUTPUT);
    switch (options->mode) {
        case BATCH_CELLS: return list_cells(state);
        case BATCH_LAYERS:
        case BATCH_STARTER: return answer(state, options);
        case BATCH_CHECK: return check_files(state, options, cuts);
        default: return run_and_save(state, options, cuts);
    }
}

static BatchStatus run_with_options(const BatchOptions *options) {
    AppState state;
    app_start(&state, batch_frontend(), options->data_folder);
    state.image_format = options->format;
    std::memcpy(state.export_wish.formats, options->formats, sizeof(state.export_wish.formats));
    batch_frontend_start(options->layout_path, options->process_path);

    CutList cuts = {};
    BatchStatus status = BATCH_USAGE;
    if (read_cuts(options, &cuts)) {
        status = work(&state, options, &cuts);
    } else if (batch_interrupted()) {
        status = BATCH_INTERRUPTED;
    }
    if (status == BATCH_INTERRUPTED) {
        diagnostic_write(L"interrupted");
    }

    batch_console_to(BATCH_CONSOLE_NOWHERE);  // cleaning up is not part of the text of the commands
    app_cleanup(&state);
    app_end(&state);
    platform_gl_free(state.gl_context);
    batch_frontend_end();
    cut_list_free(&cuts);
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
        case BATCH_PARSE_WRONG: status = BATCH_USAGE; break;
    }
    batch_options_free(&options);
    if (!batch_output_finish() && status == BATCH_DONE) {
        status = BATCH_WRITE_FAILED;
    }
    return status;
}
