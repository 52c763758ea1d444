#include "platform/win32/wide_text.h"

#include <cwchar>

#include "platform/memory.h"

wchar_t *wide_copy(const wchar_t *text) {
    return wide_join(L"", text);
}

wchar_t *wide_join(const wchar_t *start, const wchar_t *rest) {
    size_t start_length = std::wcslen(start);
    auto *text = memory_new_array<wchar_t>(static_cast<i64>(start_length + std::wcslen(rest)) + 1);
    std::wcscpy(text, start);
    std::wcscpy(text + start_length, rest);
    return text;
}
