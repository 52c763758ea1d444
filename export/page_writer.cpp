#include "export/page_writer.h"

#include <cassert>
#include <cmath>
#include <cstring>
#include <cwchar>

#include "export/export_text.h"
#include "export/page_base64.h"
#include "export/page_facts.h"
#include "export/page_html.h"
#include "export/page_pack.h"
#include "export/page_plane.h"
#include "export/page_record.h"
#include "process/process_text.h"

// A copy; an empty text for null.
static char *text_copy(const char *text) {
    return process_text_copy(text != nullptr ? text : "").release();
}

static char *text_from_wide(const wchar_t *text) {
    return export_text_from_wide(text != nullptr ? text : L"").release();
}

// The file's name alone: what folders it lay in is nobody's business who gets the page.
static char *file_name(const wchar_t *path) {
    const wchar_t *name = path;
    for (const wchar_t *next = path; next != nullptr && *next != 0; ++next) {
        if (*next == L'/' || *next == L'\\') {
            name = next + 1;
        }
    }
    return text_from_wide(name);
}

// "Quarn 3.0.0" is a program and its version.
static void take_program(PageWriter *page, const char *text) {
    page->program = text_copy(text);
    char *blank = std::strrchr(page->program, ' ');
    page->version = text_copy(blank != nullptr ? blank + 1 : "");
    if (blank != nullptr) {
        *blank = 0;
    }
}

// No height is above what all steps together add, or below what they take away.
static f64 largest_height(const Stack *stack) {
    f64 sum = 0.0;
    for (i32 i = 0; i < stack->steps->count; ++i) {
        const ProcessStep *step = stack->steps->items[i];
        sum += std::fabs(static_cast<f64>(step->thickness)) + std::fabs(static_cast<f64>(step->depth));
    }
    return sum;
}

PageWriter *page_writer_create(const Stack *stack, const ExportFacts *facts, const char *process_text) {
    assert(stack != nullptr && stack->steps != nullptr && facts != nullptr && process_text != nullptr);
    assert(stack->grid_n > 0 && stack->grid_m > 0);
    auto *page = memory_new_zeroed<PageWriter>();
    page->grid_n = stack->grid_n;
    page->grid_m = stack->grid_m;
    page->quanta = page_plane_quanta(largest_height(stack));
    take_program(page, facts->program);
    page->layout = file_name(facts->layout_path);
    page->cell = text_copy(stack->cell_name);
    page->process_name = file_name(facts->process_path);
    page->process_text = text_copy(process_text);
    page->cut = text_copy(facts->cut_name);
    page->heading = text_copy(nullptr);
    page->date = text_copy(facts->date);
    page->spacing = stack->spacing;
    page->x = stack->origin_x;
    page->y = stack->origin_y;
    page->width = stack->width;
    page->depth = stack->depth;
    page->lengths_in_nm = stack->lengths_in_nm != 0;
    return page;
}

void page_step_free(PageStep *step) {
    assert(step != nullptr);
    memory_free(step->title);
    memory_free(step->changes);
    memory_free(step->removed);
    memory_free(step->planes);
    memory_free(step->block);
}

void page_writer_free(PageWriter *page) {
    if (page == nullptr) {
        return;
    }
    for (i32 i = 0; i < page->step_count; ++i) {
        page_step_free(&page->steps[i]);
    }
    for (i32 i = 0; i < page->film_count; ++i) {
        memory_free(page->films[i].name);
        memory_free(page->films[i].material);
    }
    for (i32 i = 0; i < page->kept_count; ++i) {
        memory_free(page->kept[i]->heights);
        memory_free(page->kept[i]);
    }
    char *const texts[] = {page->program,      page->version, page->layout,  page->cell, page->process_name,
                           page->process_text, page->cut,     page->heading, page->date};
    for (char *text : texts) {
        memory_free(text);
    }
    memory_free(page->steps);
    memory_free(page->films);
    memory_free(page->kept);
    memory_free(page);
}

bool page_writer_add(PageWriter *page, const ExportStep *step) {
    assert(page != nullptr && step != nullptr && step->stack != nullptr && step->title != nullptr);
    assert(step->index >= 0 && step->index < step->stack->steps->count);
    const ProcessStep *command = step->stack->steps->items[step->index];
    PageStep added = {};
    added.number = step->number;
    added.kind = step->index > 0 ? command->kind : PAGE_SUBSTRATE;
    added.line = command->line_number;
    added.title = text_from_wide(step->title);
    if (!page_pack_step(page, step->stack, &added)) {
        page_step_free(&added);
        return false;
    }
    array_append(&page->steps, &page->step_count, &page->step_capacity, added, 32);
    if (step->heading != nullptr && page->heading[0] == 0) {
        memory_free(page->heading);
        page->heading = text_from_wide(step->heading);
    }
    return true;
}

static void put_data(const void *source, ExportText *text) {
    const auto *page = static_cast<const PageWriter *>(source);
    export_text_put(text, "<script type=\"application/json\" id=\"quarn-facts\">");
    page_facts_put(text, page);
    export_text_put(text, "</script>\n");
    for (i32 i = 0; i < page->step_count; ++i) {
        export_text_put(text, "<script type=\"text/plain\" id=\"quarn-step-");
        export_text_put_integer(text, i);
        export_text_put(text, "\">");
        page_base64_put(text, page->steps[i].block, page->steps[i].block_size);
        export_text_put(text, "</script>\n");
    }
}

// What the browser's window is named: the user's heading, else the cell.
static const char *page_title(const PageWriter *page) {
    if (page->heading[0] != 0) {
        return page->heading;
    }
    return page->cell[0] != 0 ? page->cell : page->program;
}

bool page_writer_write(const PageWriter *page, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(page != nullptr && file != nullptr && reason != nullptr);
    const PageParts parts = {page_title(page), put_data, page};
    ExportText text = {};
    const Owned<ExportText> owner(&text);
    text.file = file;
    page_html_put(&text, &parts);
    if (!export_text_finish(&text)) {
        std::wcsncpy(reason, L"not enough memory", EXPORT_REASON_SIZE);
        return false;
    }
    return true;
}
