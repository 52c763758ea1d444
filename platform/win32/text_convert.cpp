// Wide texts are UTF-16, narrow ones UTF-8. File names of the system may hold halves of pairs without
// their other half; those are written as the three bytes that their number would take, and read back.
#include <cstring>
#include <cwchar>

#include "platform/memory.h"
#include "platform/platform.h"

static constexpr u32 REPLACEMENT_CODE = 0xFFFD;  // for bytes that are not UTF-8
static constexpr u32 LARGEST_CODE_POINT = 0x10FFFF;

// Reads one code point at `bytes` (zero-terminated) and returns the number of bytes it takes.
static i32 decode_code(const char *bytes, u32 *code) {
    u32 lead = static_cast<u8>(bytes[0]);
    *code = lead;
    if (lead < 0x80) {
        return 1;
    }
    *code = REPLACEMENT_CODE;
    i32 tail_count = lead < 0xC2 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF5 ? 3 : 0;
    if (tail_count == 0) {
        return 1;
    }
    u32 value = lead & (0x3FU >> tail_count);
    for (i32 i = 1; i <= tail_count; ++i) {
        u32 tail = static_cast<u8>(bytes[i]);
        if ((tail & 0xC0) != 0x80) {  // the terminator too
            return 1;
        }
        value = (value << 6) | (tail & 0x3F);
    }
    const u32 smallest[4] = {0, 0x80, 0x800, 0x10000};
    if (value < smallest[tail_count] || value > LARGEST_CODE_POINT) {
        return 1;
    }
    *code = value;
    return tail_count + 1;
}

// Writes one code point as 1 to 4 bytes and returns their number.
static i32 encode_code(u32 code, char *bytes) {
    if (code < 0x80) {
        bytes[0] = static_cast<char>(code);
        return 1;
    }
    i32 tail_count = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    const u32 lead[4] = {0, 0xC0, 0xE0, 0xF0};
    bytes[0] = static_cast<char>(static_cast<u8>(lead[tail_count] | (code >> (6 * tail_count))));
    for (i32 i = 1; i <= tail_count; ++i) {
        bytes[i] = static_cast<char>(static_cast<u8>(0x80 | ((code >> (6 * (tail_count - i))) & 0x3F)));
    }
    return tail_count + 1;
}

wchar_t *platform_wide_from_system(const char *text) {
    auto *wide = memory_new_array<wchar_t>(static_cast<i64>(std::strlen(text)) + 1);
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

char *platform_system_from_wide(const wchar_t *text) {
    char *bytes = memory_new_array<char>(static_cast<i64>(std::wcslen(text)) * 3 + 1);
    i64 count = 0;
    for (; *text != 0; ++text) {
        u32 code = static_cast<u32>(*text);
        if (code >= 0xD800 && code < 0xDC00 && text[1] >= 0xDC00 && text[1] <= 0xDFFF) {
            code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<u32>(*++text) - 0xDC00);
        }
        count += encode_code(code, bytes + count);
    }
    bytes[count] = 0;
    return bytes;
}
