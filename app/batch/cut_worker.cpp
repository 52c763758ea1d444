#include "app/batch/cut_worker.h"

#include <cassert>
#include <cstring>
#include <cwchar>

#include "app/batch/batch_folders.h"
#include "app/batch/batch_graphics.h"
#include "app/batch/batch_run.h"
#include "log/log.h"
#include "log/shown_text.h"
#include "platform/memory.h"
#include "platform/thread_context.h"
#include "platform/thread_role.h"
#include "platform/wide_text.h"
#include "render/font.h"

static CutWorker *worker_of(BatchTexts *texts) {
    return reinterpret_cast<CutWorker *>(texts);
}

static CutResult *result_of(CutWorker *worker) {
    return &worker->work->results[worker->index];
}

// Keeps the first text as what the table tells of the cut.
static void keep_reason(CutResult *result, const wchar_t *text) {
    if (result->reason == nullptr) {
        result->reason = wide_copy(text).release();
        result->reason[std::wcscspn(result->reason, L"\r\n")] = 0;
    }
}

// Faults begin so, wherever they come from.
static bool is_fault(const wchar_t *text) {
    return std::wcsncmp(text, L"ERROR", 5) == 0 || std::wcsncmp(text, L"Error", 5) == 0;
}

static void write_console(BatchTexts *texts, const wchar_t *text) {
    CutWorker *worker = worker_of(texts);
    if (worker->console != nullptr && !batch_write_console(worker->console, text)) {
        worker->console_failed = true;
    }
    if (is_fault(text)) {
        const std::lock_guard<std::mutex> lock(worker->work->lock);
        keep_reason(result_of(worker), text);
    }
}

static bool was_told(const CutWork *work, const wchar_t *text) {
    for (i32 i = 0; i < work->told_count; ++i) {
        if (std::wcscmp(work->told[i].text, text) == 0) {
            return true;
        }
    }
    return false;
}

// The length of a line without an end that points to the console above it, which is another one for a cut.
static size_t length_of_own(const wchar_t *text) {
    static const wchar_t *const pointer = L", see above";
    const size_t length = std::wcslen(text);
    const size_t end = std::wcslen(pointer);
    return length > end && std::wcscmp(text + length - end, pointer) == 0 ? length - end : length;
}

// A line about one cut is told with its name; one about the process file has been told before.
static void write_error_line(BatchTexts *texts, const wchar_t *text) {
    CutWorker *worker = worker_of(texts);
    CutWork *work = worker->work;
    const std::lock_guard<std::mutex> lock(work->lock);
    if (was_told(work, text)) {
        return;
    }
    keep_reason(result_of(worker), text);
    const ShownText name = shown_text(work->cuts->items[worker->index].name);
    const size_t length = length_of_own(text);
    const wchar_t *end = text[length] != 0 ? L", see its console.txt" : L"";
    const Owned<WString> line(wstring_make(L"%ls: %.*ls%ls", name.text, static_cast<int>(length), text, end));
    batch_write_error(wstring_text(line.get()));
}

bool cut_worker_create(CutWorker *worker, CutWork *work, bool first) {
    assert(worker != nullptr && work != nullptr);
    const AppState *main = work->main;
    AppState *state = &worker->state;
    worker->work = work;
    worker->run.texts = {write_console, write_error_line};
    batch_run_create(&worker->run);
    state->frontend = main->frontend;
    state->places = main->places;
    state->layout = main->layout;
    state->gds_path = main->gds_path;
    state->picture_style = main->picture_style;
    state->image_format = main->image_format;
    state->step_list = main->step_list;
    std::memcpy(state->export_wish.formats, main->export_wish.formats, sizeof(state->export_wish.formats));
    state->dump_required = 1;
    if (work->options->no_images) {
        return true;
    }
    if (first) {
        state->gl_context = main->gl_context;
        state->surface_program = main->surface_program;
        state->point_program = main->point_program;
        return true;
    }
    const bool made = batch_graphics_start(state, main->picture_style.width) == BATCH_DONE;
    platform_gl_make_current(nullptr);
    return made;
}

void cut_worker_free(CutWorker *worker) {
    AppState *state = &worker->state;
    if (state->gl_context != nullptr && state->gl_context != worker->work->main->gl_context) {
        platform_gl_make_current(state->gl_context);
        font_cache_forget_context();
        shader_program_free(state->surface_program);
        shader_program_free(state->point_program);
        platform_gl_free(state->gl_context);
    }
    batch_run_free(&worker->run);
}

// The folder of the cut and its console file. False after telling why not.
static bool open_cut(CutWorker *worker, const Cut *cut) {
    AppState *state = &worker->state;
    if (!batch_folder_below(state, worker->work->main, worker->work->options, cut->name)) {
        return false;
    }
    const Owned<WString> path(
        wstring_make(L"%ls%lsconsole.txt", wstring_text(state->output_folder), PLATFORM_SEPARATOR));
    worker->console_failed = false;
    worker->console = platform_file_open(wstring_text(path.get()), "wb");
    if (worker->console == nullptr) {
        diagnostic_write(L"%ls: %ls", wstring_text(path.get()), platform_error_text());
    }
    return worker->console != nullptr;
}

// False when not everything that the cut printed is in its file.
static bool close_console(CutWorker *worker) {
    std::FILE *console = worker->console;
    worker->console = nullptr;
    return console == nullptr || (std::fclose(console) == 0 && !worker->console_failed);
}

static BatchStatus run_cut(CutWorker *worker, const Cut *cut, bool *left) {
    AppState *state = &worker->state;
    if (!open_cut(worker, cut)) {
        return BATCH_WRITE_FAILED;
    }
    const SectionChoice section = cut_section(cut);
    state->section = &section;
    state->cut_name = cut->name;
    state->save_failed = 0;
    BatchStatus status = batch_run(state, worker->work->options, &worker->work->set_up, left);
    state->section = nullptr;
    state->cut_name = nullptr;
    if (*left) {
        return status;  // the worker of the run still prints and draws
    }
    if (!close_console(worker) && status == BATCH_DONE) {
        diagnostic_write(L"what was printed could not be written whole to console.txt");
        status = BATCH_WRITE_FAILED;
    }
    return status;
}

static void finish_cut(CutWorker *worker, BatchStatus status, f64 start_ms) {
    CutResult *result = result_of(worker);
    const i32 pictures = worker->state.image_count;
    if (!worker->left) {
        app_forget_run(&worker->state);
    }
    {
        const std::lock_guard<std::mutex> lock(worker->work->lock);
        result->status = status;
        result->pictures = pictures;
        result->seconds = (platform_clock_ms() - start_ms) / 1000.0;
        result->finished = true;
    }
    batch_wake();
}

// The next cut for this worker; false when there is none left to begin.
static bool take_cut(CutWorker *worker) {
    CutWork *work = worker->work;
    const i32 index = work->next++;
    if (index >= work->cuts->count || batch_interrupted()) {
        return false;
    }
    const std::lock_guard<std::mutex> lock(work->lock);
    worker->index = index;
    work->results[index].started = true;
    return true;
}

i32 cut_worker_thread(void *argument) {
    auto *worker = static_cast<CutWorker *>(argument);
    assert(worker != nullptr && worker->work != nullptr);
    thread_context_set(worker);
    thread_role_set(THREAD_WINDOW);
    AppState *state = &worker->state;
    const bool draws = state->gl_context != nullptr;
    while (!worker->left && take_cut(worker)) {
        const f64 start_ms = platform_clock_ms();
        BatchStatus status = BATCH_NO_GRAPHICS;
        bool left = false;
        if (!draws || platform_gl_make_current(state->gl_context)) {
            status = run_cut(worker, &worker->work->cuts->items[worker->index], &left);
        }
        worker->left = left;
        finish_cut(worker, status, start_ms);
    }
    if (draws && !worker->left) {
        platform_gl_make_current(nullptr);
    }
    worker->ended = true;
    batch_wake();
    return 0;
}
