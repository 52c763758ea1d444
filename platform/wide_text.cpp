#include "platform/wide_text.h"

#include <cassert>
#include <cstring>
#include <cwchar>

#include "platform/utf8.h"

WideText wide_copy(const wchar_t *text) {
    assert(text != nullptr);
    return wide_join(text, L"");
}

WideText wide_from_bytes(const char *bytes) {
    assert(bytes != nullptr);
    auto text = memory_scratch<wchar_t>(static_cast<i64>(std::strlen(bytes)) + 1);
    size_t count = 0;
    while (*bytes != 0) {
        u32 code = 0;
        bytes += utf8_or_latin1_decode(bytes, &code);
        if (sizeof(wchar_t) == 2 && code > 0xFFFF) {
            text[count++] = static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
            code = 0xDC00 + (code & 0x3FF);
        }
        text[count++] = static_cast<wchar_t>(code);
    }
    text[count] = 0;
    return text;
}

WideText wide_join(const wchar_t *start, const wchar_t *rest) {
    assert(start != nullptr && rest != nullptr);
    const size_t start_length = std::wcslen(start);
    auto text = memory_scratch<wchar_t>(static_cast<i64>(start_length + std::wcslen(rest)) + 1);
    std::wcscpy(text.get(), start);
    std::wcscpy(text.get() + start_length, rest);
    return text;
}
