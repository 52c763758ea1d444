// The system's texts are bytes, UTF-8 by custom but without any promise. A byte that is not part of
// valid UTF-8 becomes the lone unit 0xDC00 + byte, which no valid text contains, and turns back into
// that byte.
#include <cstring>
#include <cwchar>

#include "platform/memory.h"
#include "platform/platform.h"

static constexpr u32 ESCAPE_BASE = 0xDC00;       // plus the byte, 0x80 to 0xFF
static constexpr u32 REPLACEMENT_UNIT = 0xFFFD;  // for units that no text can have
static constexpr u32 LARGEST_CODE_POINT = 0x10FFFF;

static bool is_surrogate(u32 unit) {
    return unit >= 0xD800 && unit <= 0xDFFF;
}

// Reads one unit at `bytes` (zero-terminated) and returns the number of bytes it takes.
static i32 decode_unit(const char *bytes, u32 *unit) {
    u32 lead = static_cast<u8>(bytes[0]);
    if (lead < 0x80) {
        *unit = lead;
        return 1;
    }
    *unit = ESCAPE_BASE + lead;
    i32 tail_count = lead < 0xC2 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF5 ? 3 : 0;
    if (tail_count == 0) {
        return 1;
    }
    u32 code = lead & (0x3FU >> tail_count);
    for (i32 i = 1; i <= tail_count; ++i) {
        u32 tail = static_cast<u8>(bytes[i]);
        if ((tail & 0xC0) != 0x80) {  // the terminator too
            return 1;
        }
        code = (code << 6) | (tail & 0x3F);
    }
    const u32 smallest[4] = {0, 0x80, 0x800, 0x10000};
    if (code < smallest[tail_count] || code > LARGEST_CODE_POINT || is_surrogate(code)) {
        return 1;
    }
    *unit = code;
    return tail_count + 1;
}

// Writes one unit as 1 to 4 bytes and returns their number.
static i32 encode_unit(u32 unit, char *bytes) {
    if (unit >= ESCAPE_BASE + 0x80 && unit <= ESCAPE_BASE + 0xFF) {
        bytes[0] = static_cast<char>(static_cast<u8>(unit - ESCAPE_BASE));
        return 1;
    }
    if (is_surrogate(unit) || unit > LARGEST_CODE_POINT) {
        unit = REPLACEMENT_UNIT;
    }
    if (unit < 0x80) {
        bytes[0] = static_cast<char>(unit);
        return 1;
    }
    i32 tail_count = unit < 0x800 ? 1 : unit < 0x10000 ? 2 : 3;
    const u32 lead[4] = {0, 0xC0, 0xE0, 0xF0};
    bytes[0] = static_cast<char>(static_cast<u8>(lead[tail_count] | (unit >> (6 * tail_count))));
    for (i32 i = 1; i <= tail_count; ++i) {
        bytes[i] = static_cast<char>(static_cast<u8>(0x80 | ((unit >> (6 * (tail_count - i))) & 0x3F)));
    }
    return tail_count + 1;
}

wchar_t *platform_wide_from_system(const char *text) {
    auto *wide = memory_new_array<wchar_t>(static_cast<i64>(std::strlen(text)) + 1);
    i64 count = 0;
    while (*text != 0) {
        u32 unit = 0;
        text += decode_unit(text, &unit);
        wide[count++] = static_cast<wchar_t>(unit);
    }
    wide[count] = 0;
    return wide;
}

char *platform_system_from_wide(const wchar_t *text) {
    char *bytes = memory_new_array<char>(static_cast<i64>(std::wcslen(text)) * 4 + 1);
    i64 count = 0;
    for (; *text != 0; ++text) {
        count += encode_unit(static_cast<u32>(*text), bytes + count);
    }
    bytes[count] = 0;
    return bytes;
}
