#include "process/hints.h"

#include <cassert>
#include <cstdarg>

#include "log/log.h"
#include "log/text.h"

static const wchar_t *hint_path = nullptr;
static i32 hint_count = 0;

void hints_start(const wchar_t *path) {
    assert(path != nullptr && hint_path == nullptr && "one file at a time");
    hint_path = path;
    hint_count = 0;
}

void hint_write(i32 line, const wchar_t *format, ...) {
    assert(hint_path != nullptr && format != nullptr);
    if (hint_count++ >= HINTS_MOST) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    const WideText text = text_format_wide(format, arguments);
    va_end(arguments);
    if (line > 0) {
        diagnostic_write(L"%ls:%d: %ls", hint_path, line, text.get());
    } else {
        diagnostic_write(L"%ls: %ls", hint_path, text.get());
    }
}

bool hints_full() {
    return hint_count >= HINTS_MOST;
}

void hints_end() {
    assert(hint_path != nullptr);
    if (hint_count > HINTS_MOST) {
        diagnostic_write(L"%ls: and %d more", hint_path, hint_count - HINTS_MOST);
    }
    hint_path = nullptr;
    hint_count = 0;
}
