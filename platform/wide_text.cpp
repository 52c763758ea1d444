#include "platform/wide_text.h"

#include <cassert>
#include <cwchar>

WideText wide_copy(const wchar_t *text) {
    assert(text != nullptr);
    return wide_join(text, L"");
}

WideText wide_join(const wchar_t *start, const wchar_t *rest) {
    assert(start != nullptr && rest != nullptr);
    const size_t start_length = std::wcslen(start);
    auto text = memory_scratch<wchar_t>(static_cast<i64>(start_length + std::wcslen(rest)) + 1);
    std::wcscpy(text.get(), start);
    std::wcscpy(text.get() + start_length, rest);
    return text;
}
