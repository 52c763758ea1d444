#include "export/page_writer.h"

#include <cassert>
#include <cwchar>

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

bool page_writer_write(const PageWriter *page, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(page != nullptr && file != nullptr && reason != nullptr);
    static_cast<void>(page);
    static_cast<void>(file);
    std::wcsncpy(reason, L"not yet", EXPORT_REASON_SIZE);
    return false;
}
