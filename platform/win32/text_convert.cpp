// Wide texts are UTF-16, narrow ones UTF-8. File names of the system may hold halves of pairs without
// their other half; those are written as the three bytes that their number would take, and read back.
#include <cassert>
#include <cstring>
#include <cwchar>

#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/utf8.h"

static constexpr u32 REPLACEMENT_CODE = 0xFFFD;  // for bytes that are not UTF-8

// Reads one code point at `bytes` (zero-terminated) and returns the number of bytes it takes.
static i32 decode_code(const char *bytes, u32 *code) {
    const i32 length = utf8_decode(bytes, code);
    if (length == 0) {
        *code = REPLACEMENT_CODE;
        return 1;
    }
    return length;
}

WideText platform_wide_from_system(const char *text) {
    assert(text != nullptr);
    auto wide = memory_scratch<wchar_t>(static_cast<i64>(std::strlen(text)) + 1);
    i64 count = 0;
    while (*text != 0) {
        u32 code = 0;
        text += decode_code(text, &code);
        if (code >= 0x10000) {
            wide[count++] = static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
            code = 0xDC00 + ((code - 0x10000) & 0x3FF);
        }
        wide[count++] = static_cast<wchar_t>(code);
    }
    wide[count] = 0;
    return wide;
}

NarrowText platform_system_from_wide(const wchar_t *text) {
    assert(text != nullptr);
    auto bytes = memory_scratch<char>(static_cast<i64>(std::wcslen(text)) * 3 + 1);
    i64 count = 0;
    for (; *text != 0; ++text) {
        u32 code = static_cast<u32>(*text);
        if (code >= 0xD800 && code < 0xDC00 && text[1] >= 0xDC00 && text[1] <= 0xDFFF) {
            code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<u32>(*++text) - 0xDC00);
        }
        count += utf8_encode(code, bytes.get() + count);
    }
    bytes[count] = 0;
    return bytes;
}
