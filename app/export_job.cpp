#include "app/export_job.h"

#include <cassert>
#include <cwchar>

#include "app/export_facts.h"
#include "app/frontend.h"
#include "app/menu.h"
#include "export/export_file.h"
#include "export/page_writer.h"
#include "log/log.h"
#include "platform/thread_role.h"
#include "sim/stack_replay.h"

void export_job_free(ExportJob *job) {
    if (job != nullptr) {
        wstring_free(job->path);
        memory_free(job);
    }
}

static bool fail(ExportJob *job, const wchar_t *reason) {
    std::wcsncpy(job->reason, reason, EXPORT_REASON_SIZE - 1);
    return false;
}

// Whether the steps can run beside the run that is kept: running out of memory on the way would end the
// program, and the pictures with it.
static bool has_memory_for_steps(const Stack *run) {
    const auto bytes = static_cast<size_t>(stack_replay_point_bytes(run));
    const Owned<u8[]> block(static_cast<u8 *>(memory_try_allocate(stack_point_count(run), bytes)));
    return block != nullptr;
}

// Runs the steps up to the last one of the job. `page` receives each that has a picture; null: none.
static bool run_steps(const AppState *state, Stack *replay, const ExportFacts *facts, PageWriter *page) {
    ExportJob *job = state->export_job;
    for (i32 i = 0; i <= job->last_step; ++i) {
        if (state->stop_requested != 0) {
            job->outcome = EXPORT_STOPPED;
            return false;
        }
        stack_replay_step(replay, i);
        if (page == nullptr || replay->steps->items[i]->kind == STEP_DUMP) {
            continue;
        }
        const WideText title = export_title(replay, i);
        const ExportStep step = export_step(state, replay, i, title.get(), facts);
        if (!page_writer_add(page, &step)) {
            return fail(job, L"there is no memory for it");
        }
    }
    return true;
}

static bool write_page(void *page, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    return page_writer_write(static_cast<PageWriter *>(page), file, reason);
}

static bool do_job(const AppState *state) {
    ExportJob *job = state->export_job;
    if (!has_memory_for_steps(state->stack)) {
        return fail(job, L"there is no memory to run the steps once more");
    }
    const ExportFacts facts = export_facts(state);
    const OwnedReplay replay(stack_replay_create(state->stack));
    if (job->is_page) {
        const char *text = replay->process_text != nullptr ? replay->process_text : "";
        const Owned<PageWriter> page(page_writer_create(replay.get(), &facts, text));
        return run_steps(state, replay.get(), &facts, page.get()) &&
               export_file_write(wstring_text(job->path), page.get(), write_page, job->reason);
    }
    const WideText title = export_title(replay.get(), job->last_step);
    const ExportStep step = export_step(state, replay.get(), job->last_step, title.get(), &facts);
    return run_steps(state, replay.get(), &facts, nullptr) &&
           export_write(&step, job->format, wstring_text(job->path), job->reason);
}

i32 export_thread(void *argument) {
    thread_role_set(THREAD_WORKER);
    auto *state = static_cast<AppState *>(argument);
    assert(state != nullptr && state->stack != nullptr && state->export_job != nullptr);
    log_write(L"Running export thread");
    state->running = 1;
    menu_update(state);
    if (do_job(state)) {
        state->export_job->outcome = EXPORT_WRITTEN;
    }
    state->running = 0;
    state->frontend->run_done(state);
    return 0;
}
