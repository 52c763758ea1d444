#include "app/export_commands.h"

#include <cassert>
#include <cwchar>
#include <utility>

#include "app/export_job.h"
#include "app/frontend.h"
#include "app/menu.h"
#include "app/picture_commands.h"
#include "app/picture_name.h"
#include "app/save_command.h"
#include "app/step_choice.h"
#include "app/worker_start.h"
#include "log/log.h"
#include "platform/thread_role.h"

const wchar_t *const EXPORT_SAVE_TITLE = L"Export this step";

SaveForm export_save_form(SaveKind kinds[EXPORT_FORMAT_COUNT]) {
    assert(kinds != nullptr);
    for (i32 i = 0; i < EXPORT_FORMAT_COUNT; ++i) {
        kinds[i] = {EXPORT_FORMATS[i].kind, EXPORT_FORMATS[i].extension};
    }
    return {EXPORT_SAVE_TITLE, kinds, EXPORT_FORMAT_COUNT};
}

// The step after which the picture on show was made; -1 without one.
static i32 step_on_show(const AppState *state) {
    const i32 picture = picture_on_show(state);
    const Stack *stack = state->stack;
    for (i32 i = 0; picture >= 0 && stack != nullptr && i < stack->steps->count; ++i) {
        if (stack->steps->items[i]->kind != STEP_DUMP && step_picture_number(stack, i) == picture) {
            return i;
        }
    }
    return -1;
}

// The last step of the run that has a picture: one that was stopped has none for those after it.
static i32 last_step_shown(const AppState *state) {
    const Stack *stack = state->stack;
    i32 last = -1;
    for (i32 i = 0; i < stack->steps->count; ++i) {
        const bool shown =
            stack->steps->items[i]->kind != STEP_DUMP && step_picture_number(stack, i) < state->image_count;
        last = shown ? i : last;
    }
    return last;
}

bool export_possible(const AppState *state) {
    assert(state != nullptr && thread_role_fits(THREAD_WINDOW));
    return state->run_active == 0 && step_on_show(state) >= 0;
}

static void set_status(AppState *state, const wchar_t *text) {
    if (state->quit_pending == 0) {
        state->frontend->set_status(state, STATUS_PROCESS, text);
    }
}

static void tell_failure(const ExportJob *job, const wchar_t *what, const wchar_t *reason) {
    picture_failure_tell(L"%ls could not be written as \"%ls\": %ls", what, wstring_text(job->path), reason);
}

static const wchar_t *name_of(const ExportJob *job) {
    return job->is_page ? L"The page" : L"The step";
}

// Takes the job over.
static void start_job(AppState *state, Owned<ExportJob> job) {
    log_write(L"Exporting to %ls", wstring_text(job->path));
    state->stop_requested = 0;
    set_status(state, L"Exporting ...");
    state->export_job = job.release();
    if (!worker_start(state, export_thread)) {
        tell_failure(state->export_job, name_of(state->export_job),
                     L"the system refuses to start a thread for it");
        set_status(state, L"");
        export_job_free(state->export_job);
        state->export_job = nullptr;
    }
    menu_update(state);
}

void export_command(AppState *state, SaveDialog ask) {
    assert(state != nullptr && ask != nullptr && thread_role_fits(THREAD_WINDOW));
    if (!export_possible(state)) {
        return;
    }
    log_write(L"Exporting this step");
    const i32 step = step_on_show(state);
    const WideText title = picture_title(state->stack, step);
    i32 kind = EXPORT_SVG;
    const WideText name = picture_name(step_picture_number(state->stack, step), title.get(),
                                       EXPORT_FORMATS[kind].extension, picture_name_rules(), nullptr);
    SaveKind kinds[EXPORT_FORMAT_COUNT];
    const SaveForm form = export_save_form(kinds);
    Owned<WString> path(ask(state, &form, name.get(), &kind));
    if (path == nullptr || state->run_active != 0 || state->stack == nullptr) {
        return;
    }
    const i32 named = save_kind_of(&form, wstring_text(path.get()));
    Owned<ExportJob> job(memory_new_zeroed<ExportJob>());
    job->last_step = step;
    job->format = static_cast<ExportFormat>(named < EXPORT_FORMAT_COUNT ? named : kind);
    job->path = path.release();
    start_job(state, std::move(job));
}

// The folder of the run's files, made if it is not there; null when the user wants none after one that cannot
// be made.
static Owned<WString> make_folder(AppState *state) {
    Owned<WString> folder(state->saved_folder != nullptr ? wstring_copy(wstring_text(state->saved_folder))
                                                         : output_folder_name(state));
    while (folder != nullptr && !platform_folder_create_all(wstring_text(folder.get()))) {
        picture_failure_tell(L"The page could not be written into folder \"%ls\": %ls",
                             wstring_text(folder.get()), platform_error_text());
        folder.reset(state->frontend->choose_folder(state, wstring_text(folder.get())));
    }
    return folder;
}

// Where the page of a run lies in a folder: it is named after the process file.
static WString *page_path(const AppState *state, const wchar_t *folder) {
    const wchar_t *name = wstring_text(state->process_path);
    for (const wchar_t *next = name; *next != 0; ++next) {
        name = *next == L'/' || *next == PLATFORM_SEPARATOR[0] ? next + 1 : name;
    }
    const wchar_t *dot = std::wcsrchr(name, L'.');
    const size_t length = dot != nullptr && dot > name ? static_cast<size_t>(dot - name) : std::wcslen(name);
    return wstring_make(L"%ls%ls%.*ls.html", folder, PLATFORM_SEPARATOR, static_cast<int>(length), name);
}

void page_command(AppState *state) {
    assert(state != nullptr && thread_role_fits(THREAD_WINDOW));
    if (!export_possible(state)) {
        return;
    }
    log_write(L"Opening the run as a page");
    Owned<WString> folder(make_folder(state));
    if (folder == nullptr || state->run_active != 0 || state->stack == nullptr) {
        return;
    }
    Owned<ExportJob> job(memory_new_zeroed<ExportJob>());
    job->is_page = true;
    job->last_step = last_step_shown(state);
    job->path = page_path(state, wstring_text(folder.get()));
    wstring_free(state->saved_folder);
    state->saved_folder = folder.release();
    start_job(state, std::move(job));
}

// What the status bar says of the end, a new string.
static WString *end_text(const ExportJob *job) {
    switch (job->outcome) {
        case EXPORT_WRITTEN: return wstring_make(L"Exported %ls", wstring_text(job->path));
        case EXPORT_STOPPED: return wstring_make(L"The export was stopped");
        default: return wstring_make(L"The export failed");
    }
}

i32 export_done(AppState *state) {
    assert(state != nullptr && state->export_job != nullptr && thread_role_fits(THREAD_WINDOW));
    const Owned<ExportJob> job(state->export_job);
    state->export_job = nullptr;
    state->run_active = 0;
    if (state->quit_pending != 0) {
        app_cleanup(state);
        return 1;
    }
    const Owned<WString> text(end_text(job.get()));
    set_status(state, wstring_text(text.get()));
    if (job->outcome == EXPORT_FAILED) {
        tell_failure(job.get(), name_of(job.get()), job->reason);
    } else if (job->outcome == EXPORT_WRITTEN && job->is_page &&
               !state->frontend->open_file(state, wstring_text(job->path))) {
        picture_failure_tell(L"The page is \"%ls\", but the system has no program to open it",
                             wstring_text(job->path));
    }
    diagnostics_show();
    menu_update(state);
    return 0;
}
