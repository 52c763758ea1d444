#include "export/export_file.h"

#include <cassert>
#include <cwchar>

#include "platform/whole_file.h"

static_assert(EXPORT_REASON_SIZE >= WHOLE_FILE_REASON_SIZE, "a reason of one fits into the other");

bool export_file_write(const wchar_t *path, void *context, ExportFileWriter write,
                       wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(path != nullptr && write != nullptr && reason != nullptr);
    WholeFile whole;
    if (!whole_file_open(&whole, path, "wb")) {
        std::wcsncpy(reason, whole.reason, EXPORT_REASON_SIZE);
        return false;
    }
    if (!write(context, whole.file, reason)) {
        whole_file_abandon(&whole);
        return false;
    }
    const bool written = whole_file_commit(&whole);
    if (!written) {
        std::wcsncpy(reason, whole.reason, EXPORT_REASON_SIZE);
    }
    return written;
}
