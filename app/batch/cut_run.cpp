#include "app/batch/cut_run.h"

#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <cwchar>
#include <new>

#include "app/batch/batch_output.h"
#include "app/batch/batch_run.h"
#include "app/batch/cut_worker.h"
#include "app/export_run.h"
#include "log/log.h"
#include "log/progress.h"
#include "platform/memory.h"
#include "platform/thread_context.h"
#include "platform/wide_text.h"
#include "process/process_file.h"
#include "sim/stack_setup.h"

static constexpr i32 TOLD_FIRST_CAPACITY = 16;

// The texts of the check go where the program's go, and their lines are remembered.
struct CheckTexts {
    BatchTexts texts;
    CutWork *work;
};

static void print_console(BatchTexts *texts, const wchar_t *text) {
    thread_context_set(nullptr);
    batch_console_append(text);
    thread_context_set(texts);
}

static void print_and_remember(BatchTexts *texts, const wchar_t *text) {
    CutWork *work = reinterpret_cast<CheckTexts *>(texts)->work;
    batch_write_error(text);
    const ToldLine line = {wide_copy(text).release()};
    array_append(&work->told, &work->told_count, &work->told_capacity, line, TOLD_FIRST_CAPACITY);
}

// The widest of the cuts that have a size: what is too large for it is too large for all of them.
static const Cut *widest_cut(const CutList *cuts) {
    const Cut *widest = nullptr;
    f64 width = 0.0;
    for (i32 i = 0; i < cuts->count; ++i) {
        const Cut *cut = &cuts->items[i];
        const f64 dx = std::strtod(cut->dx, nullptr);
        if (dx > width && std::strtod(cut->dy, nullptr) > 0.0) {
            widest = cut;
            width = dx;
        }
    }
    return widest;
}

// Reads the process file for its faults and hints. Where no cut has a size each will say so itself.
static bool check_process(CutWork *work) {
    const Cut *cut = widest_cut(work->cuts);
    if (cut == nullptr) {
        return true;
    }
    CheckTexts texts = {{print_console, print_and_remember}, work};
    thread_context_set(&texts);
    const SectionChoice section = cut_section(cut);
    const WideText path = platform_wide_from_system(work->options->process_path);
    const Owned<Stack> stack(memory_new_zeroed<Stack>());
    const bool good = process_read_file(stack.get(), path.get(), &section) == 0;
    thread_context_set(nullptr);
    return good;
}

// The workers, of which at least the first can draw.
struct Workers {
    CutWorker *items;  // owned
    i32 count;
};

static Workers make_workers(CutWork *work, i32 wanted) {
    Workers workers = {memory_new_zeroed<CutWorker>(wanted), 0};
    for (i32 i = 0; i < wanted; ++i) {
        auto *worker = new (&workers.items[i]) CutWorker();
        if (!cut_worker_create(worker, work, i == 0)) {
            cut_worker_free(worker);  // those before it share its cuts
            break;
        }
        ++workers.count;
    }
    return workers;
}

// Tells of the cuts that have finished since the last call, and how far the others are.
//   reported   a flag a cut
static void report_finished(CutWork *work, bool *reported) {
    const std::lock_guard<std::mutex> lock(work->lock);
    i32 done = 0;
    for (i32 i = 0; i < work->cuts->count; ++i) {
        const CutResult *result = &work->results[i];
        if (result->finished && !reported[i]) {
            reported[i] = true;
            const Owned<WString> line = cut_result_line(&work->cuts->items[i], result);
            console_printf_w(L"%ls\r\n", wstring_text(line.get()));
        }
        done += result->finished ? 1 : 0;
    }
    if (done < work->cuts->count) {
        progress_show(L"%d of %d cuts done", done, work->cuts->count);
    }
}

static bool all_ended(const Workers *workers) {
    bool ended = true;
    for (i32 i = 0; i < workers->count; ++i) {
        ended = ended && workers->items[i].ended;
    }
    return ended;
}

// Starts the threads and waits for them; an interrupt wakes all of them, so that they stop their runs.
static void run_workers(CutWork *work, Workers *workers) {
    const Owned<bool[]> reported = memory_scratch_zeroed<bool>(work->cuts->count);
    report_finished(work, reported.get());
    for (i32 i = 0; i < workers->count; ++i) {
        CutWorker *worker = &workers->items[i];
        worker->thread = platform_thread_start(cut_worker_thread, worker);
        worker->ended = worker->thread == nullptr;
    }
    bool passed_on = false;
    while (!all_ended(workers)) {
        batch_wait();
        if (batch_interrupted() && !passed_on) {
            passed_on = true;
            for (i32 i = 0; i < workers->count; ++i) {
                platform_semaphore_post(workers->items[i].run.events);
            }
        }
        report_finished(work, reported.get());
    }
    report_finished(work, reported.get());
    progress_clear();
}

static BatchStatus status_of(const CutWork *work) {
    if (batch_interrupted()) {
        return BATCH_INTERRUPTED;
    }
    for (i32 i = 0; i < work->cuts->count; ++i) {
        if (!work->results[i].finished || cut_result_failed(&work->results[i])) {
            return BATCH_PROCESS_FAILED;
        }
    }
    return BATCH_DONE;
}

// Joins the threads and frees the workers. Those whose worker is still at a step stay as they are, since
// the program ends beside them, and their polygons are saved here: nobody changes them during a run.
static bool end_workers(Workers *workers) {
    bool left = false;
    for (i32 i = 0; i < workers->count; ++i) {
        CutWorker *worker = &workers->items[i];
        if (worker->thread != nullptr) {
            platform_thread_join(worker->thread);
        }
        if (worker->left) {
            left = true;
            batch_save_polygons(&worker->state);
            export_run_leave(worker->state.export_run);
        } else {
            cut_worker_free(worker);
        }
    }
    if (!left) {
        memory_free(workers->items);
    }
    return left;
}

static void free_work(CutWork *work) {
    for (i32 i = 0; i < work->cuts->count; ++i) {
        memory_free(work->results[i].reason);
    }
    memory_free(work->results);
    for (i32 i = 0; i < work->told_count; ++i) {
        memory_free(work->told[i].text);
    }
    memory_free(work->told);
}

BatchStatus cuts_run(AppState *state, const BatchOptions *options, const CutList *cuts, bool *left) {
    assert(state != nullptr && options != nullptr && cuts != nullptr && cuts->count > 0 && left != nullptr);
    static CutWork work;  // outlives workers that the program ends beside
    work.cuts = cuts;
    work.options = options;
    work.main = state;
    work.next = 0;
    work.results = memory_new_zeroed<CutResult>(cuts->count);
    BatchStatus status = BATCH_PROCESS_FAILED;
    if (check_process(&work)) {
        if (state->gl_context != nullptr) {
            platform_gl_make_current(nullptr);
        }
        Workers workers = make_workers(&work, std::min(options->jobs, cuts->count));
        run_workers(&work, &workers);
        cut_table_write(cuts, work.results);
        status = status_of(&work);
        *left = end_workers(&workers);
        if (state->gl_context != nullptr && !*left) {
            platform_gl_make_current(state->gl_context);
        }
    }
    if (!*left) {
        free_work(&work);
    }
    return batch_interrupted() ? BATCH_INTERRUPTED : status;
}
