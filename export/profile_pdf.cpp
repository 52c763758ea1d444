#include "export/profile_pdf.h"

#include <cassert>
#include <cwchar>

bool profile_pdf_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(step != nullptr && file != nullptr && reason != nullptr);
    static_cast<void>(step);
    static_cast<void>(file);
    std::wcsncpy(reason, L"not yet", EXPORT_REASON_SIZE);
    return false;
}
