#include "export/page_writer.h"

#include <cassert>
#include <cwchar>

#include "export/page_html.h"

struct PageWriter {
    i32 step_count;
};

PageWriter *page_writer_create(const Stack *stack, const ExportFacts *facts, const char *process_text) {
    assert(stack != nullptr && facts != nullptr && process_text != nullptr);
    static_cast<void>(stack);
    static_cast<void>(facts);
    static_cast<void>(process_text);
    return memory_new_zeroed<PageWriter>();
}

void page_writer_free(PageWriter *page) {
    memory_free(page);
}

bool page_writer_add(PageWriter *page, const ExportStep *step) {
    assert(page != nullptr && step != nullptr);
    static_cast<void>(step);
    ++page->step_count;
    return true;
}

static void write_data(const void *source, std::FILE *file) {
    const auto *page = static_cast<const PageWriter *>(source);
    std::fprintf(file, "<script type=\"application/json\" id=\"quarn-facts\">{\"steps\": %d}</script>\n",
                 page->step_count);
}

bool page_writer_write(const PageWriter *page, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(page != nullptr && file != nullptr && reason != nullptr);
    static_cast<void>(reason);
    const PageParts parts = {"Quarn", write_data, page};
    page_html_write(&parts, file);
    return true;
}
