// The system's texts are bytes, UTF-8 by custom but without any promise. A byte that is not part of
// valid UTF-8 becomes the lone unit 0xDC00 + byte, which no valid text contains, and turns back into
// that byte.
#include <cassert>
#include <cstring>
#include <cwchar>

#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/utf8.h"

static constexpr u32 ESCAPE_BASE = 0xDC00;       // plus the byte, 0x80 to 0xFF
static constexpr u32 REPLACEMENT_UNIT = 0xFFFD;  // for units that no text can have

// Reads one unit at `bytes` (zero-terminated) and returns the number of bytes it takes.
static i32 decode_unit(const char *bytes, u32 *unit) {
    const i32 length = utf8_decode(bytes, unit);
    if (length == 0 || is_surrogate(*unit)) {
        *unit = ESCAPE_BASE + static_cast<u8>(bytes[0]);
        return 1;
    }
    return length;
}

// Writes one unit as 1 to 4 bytes and returns their number.
static i32 encode_unit(u32 unit, char *bytes) {
    if (unit >= ESCAPE_BASE + 0x80 && unit <= ESCAPE_BASE + 0xFF) {
        bytes[0] = static_cast<char>(static_cast<u8>(unit - ESCAPE_BASE));
        return 1;
    }
    return utf8_encode(is_surrogate(unit) || unit > LARGEST_CODE_POINT ? REPLACEMENT_UNIT : unit, bytes);
}

WideText platform_wide_from_system(const char *text) {
    assert(text != nullptr);
    auto wide = memory_scratch<wchar_t>(static_cast<i64>(std::strlen(text)) + 1);
    i64 count = 0;
    while (*text != 0) {
        u32 unit = 0;
        text += decode_unit(text, &unit);
        wide[count++] = static_cast<wchar_t>(unit);
    }
    wide[count] = 0;
    return wide;
}

NarrowText platform_system_from_wide(const wchar_t *text) {
    assert(text != nullptr);
    auto bytes = memory_scratch<char>(static_cast<i64>(std::wcslen(text)) * 4 + 1);
    i64 count = 0;
    for (; *text != 0; ++text) {
        count += encode_unit(static_cast<u32>(*text), bytes.get() + count);
    }
    bytes[count] = 0;
    return bytes;
}
