#include "app/export_run.h"

#include <cassert>
#include <cwchar>
#include <mutex>
#include <new>

#include "app/app_state.h"
#include "app/export_facts.h"
#include "app/older_files.h"
#include "app/picture_name.h"
#include "app/run_progress.h"
#include "export/export_file.h"
#include "export/export_text.h"
#include "export/material_numbers.h"
#include "export/page_writer.h"
#include "export/thickness_table.h"
#include "log/log.h"
#include "log/progress.h"
#include "platform/wide_text.h"

struct ExportRun {
    std::mutex
        lock;  // held by the worker while it exports, and for ever by whoever ends the program beside it
    ExportWish wish;  // its texts are the state's
    WideText folder;
    OlderFiles older[EXPORT_FORMAT_COUNT];  // of those formats that are written
    ExportText thickness;                   // the table so far
    PageWriter *page;                       // owned; null without one
    bool materials_written;                 // the table of the materials' numbers, or it has failed
    ExportFacts facts;
    i32 written, failed;  // files
    bool ended;
};

static const wchar_t *const MATERIAL_TABLE_NAME = L"layers.csv";

static bool is_anything_wished(const ExportWish *wish) {
    bool wished = wish->page_path != nullptr;
    for (const bool format : wish->formats) {
        wished = wished || format;
    }
    return wished;
}

ExportRun *export_run_create(const AppState *state) {
    assert(state != nullptr && state->stack != nullptr);
    if (!is_anything_wished(&state->export_wish) || state->output_folder == nullptr) {
        return nullptr;
    }
    auto *run = new (memory_new_zeroed<ExportRun>()) ExportRun();
    run->wish = state->export_wish;
    run->folder = wide_copy(wstring_text(state->output_folder));
    run->facts = export_facts(state);
    for (i32 i = 0; i < EXPORT_FORMAT_COUNT; ++i) {
        if (run->wish.formats[i]) {
            older_files_find(&run->older[i], run->folder.get(), &EXPORT_FORMATS[i].extension, 1);
        }
    }
    if (run->wish.formats[EXPORT_CSV]) {
        thickness_table_start(&run->thickness);
    }
    if (run->wish.page_path != nullptr) {
        const char *text = state->stack->process_text;
        run->page = page_writer_create(state->stack, &run->facts, text != nullptr ? text : "");
    }
    return run;
}

void export_run_free(ExportRun *run) {
    if (run == nullptr) {
        return;
    }
    for (OlderFiles &older : run->older) {
        older_files_free(&older);
    }
    export_text_free(&run->thickness);
    page_writer_free(run->page);
    run->~ExportRun();
    memory_free(run);
}

static const wchar_t *page_path(const ExportRun *run) {
    return wstring_text(run->wish.page_path);
}

static void tell_failure(ExportRun *run, const wchar_t *path, const wchar_t *reason) {
    diagnostic_write(L"%ls: %ls", path, reason);
    ++run->failed;
}

static WideText path_of(const ExportRun *run, const wchar_t *name) {
    const WideText start = wide_join(run->folder.get(), PLATFORM_SEPARATOR);
    return wide_join(start.get(), name);
}

//   title   as the picture's file has it
static void write_step(ExportRun *run, const ExportStep *step, const wchar_t *title, ExportFormat format) {
    const WideText name =
        picture_name(step->number, title, EXPORT_FORMATS[format].extension, picture_name_rules(), nullptr);
    const WideText path = path_of(run, name.get());
    wchar_t reason[EXPORT_REASON_SIZE];
    if (!export_write(step, format, path.get(), reason)) {
        tell_failure(run, path.get(), reason);
        return;
    }
    older_files_replace(&run->older[format], step->number, name.get());
    ++run->written;
}

static void write_files(ExportRun *run, const ExportStep *step) {
    const WideText title = picture_title(step->stack, step->index);
    if (title == nullptr) {
        diagnostic_write(L"step %d: memory is lacking for the names of its files", step->index);
        ++run->failed;
        return;
    }
    for (i32 i = 0; i < EXPORT_FORMAT_COUNT; ++i) {
        if (run->wish.formats[i]) {
            run_progress_step(step->stack, step->index, EXPORT_FORMATS[i].name);
            write_step(run, step, title.get(), static_cast<ExportFormat>(i));
        }
    }
}

// A page that lacks a step would tell a wrong story, so there is none.
static void give_up_page(ExportRun *run) {
    tell_failure(run, page_path(run), L"memory is lacking for the page");
    page_writer_free(run->page);
    run->page = nullptr;
}

static bool write_thickness(void *context, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    auto *table = static_cast<ExportText *>(context);
    if (!export_text_finish(table)) {
        std::wcsncpy(reason, L"memory is lacking for the table", EXPORT_REASON_SIZE);
        return false;
    }
    std::fwrite(table->bytes, 1, static_cast<size_t>(table->size), file);
    return true;
}

static bool write_materials(void *context, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    return material_numbers_write(static_cast<const Stack *>(context), file, reason);
}

static bool write_page(void *context, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    return page_writer_write(static_cast<PageWriter *>(context), file, reason);
}

// Writes a file of the whole run. False when it cannot be written, which is told.
static bool write_whole(ExportRun *run, const wchar_t *path, void *context, ExportFileWriter write) {
    wchar_t reason[EXPORT_REASON_SIZE];
    const bool written = export_file_write(path, context, write, reason);
    if (!written) {
        tell_failure(run, path, reason);
    }
    return written;
}

// The numbers of the materials are those of the whole process, so that their table is written first, when the
// stack is at rest.
static void write_materials_once(ExportRun *run, Stack *stack) {
    if (run->wish.formats[EXPORT_GDS] && !run->materials_written) {
        const WideText path = path_of(run, MATERIAL_TABLE_NAME);
        run->written += write_whole(run, path.get(), stack, write_materials) ? 1 : 0;
        run->materials_written = true;
    }
}

void export_run_step(ExportRun *run, const AppState *state, i32 step_index) {
    assert(run != nullptr && state != nullptr);
    const std::lock_guard<std::mutex> guard(run->lock);
    const WideText title = export_title(state->stack, step_index);
    const ExportStep step = export_step(state, state->stack, step_index, title.get(), &run->facts);
    write_files(run, &step);
    write_materials_once(run, state->stack);
    if (run->wish.formats[EXPORT_CSV]) {
        thickness_table_add(&run->thickness, &step);
    }
    if (run->page != nullptr) {
        run_progress_step(state->stack, step_index, "page");
        if (!page_writer_add(run->page, &step)) {
            give_up_page(run);
        }
    }
}

// What is made of all steps together. Whether the page was written.
static bool write_end(ExportRun *run) {
    if (run->wish.formats[EXPORT_CSV]) {
        const WideText path = path_of(run, THICKNESS_TABLE_NAME);
        run->written += write_whole(run, path.get(), &run->thickness, write_thickness) ? 1 : 0;
    }
    if (run->page == nullptr) {
        return false;
    }
    progress_show(L"writing the page");
    return write_whole(run, page_path(run), run->page, write_page);
}

void export_run_end(ExportRun *run) {
    assert(run != nullptr);
    const std::lock_guard<std::mutex> guard(run->lock);
    const bool page_written = write_end(run);
    run->ended = true;
    if (run->written > 0) {
        console_printf_w(L"Saved %d exported file%ls to folder \"%ls\"\r\n", run->written,
                         run->written == 1 ? L"" : L"s", run->folder.get());
    }
    if (page_written) {
        console_printf_w(L"Saved the page \"%ls\"\r\n", page_path(run));
    }
    if (run->written > 0 || page_written) {
        console_append(L"\r\n");
    }
    for (i32 i = 0; i < EXPORT_FORMAT_COUNT; ++i) {
        if (run->older[i].count > 0) {
            diagnostic_write(L"%ls: %d other %ls file%ls of an earlier run lie%ls there", run->folder.get(),
                             run->older[i].count, EXPORT_FORMATS[i].extension,
                             run->older[i].count == 1 ? L"" : L"s", run->older[i].count == 1 ? L"s" : L"");
        }
    }
}

void export_run_leave(ExportRun *run) {
    if (run == nullptr || !run->lock.try_lock()) {
        return;  // the worker is writing; what it is at goes with the program
    }
    if (!run->ended) {
        write_end(run);
    }
    // The lock stays, so that the worker goes no further.
}

i32 export_run_failures(const ExportRun *run) {
    return run != nullptr ? run->failed : 0;
}
