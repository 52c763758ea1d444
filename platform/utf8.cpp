#include "platform/utf8.h"

#include <cassert>

i32 utf8_decode(const char *bytes, u32 *code) {
    assert(bytes != nullptr && code != nullptr);
    const u32 lead = static_cast<u8>(bytes[0]);
    if (lead < 0x80) {
        *code = lead;
        return 1;
    }
    const i32 tail_count = lead < 0xC2 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF5 ? 3 : 0;
    if (tail_count == 0) {
        return 0;
    }
    u32 value = lead & (0x3FU >> tail_count);
    for (i32 i = 1; i <= tail_count; ++i) {
        const u32 tail = static_cast<u8>(bytes[i]);
        if ((tail & 0xC0) != 0x80) {  // the terminator too
            return 0;
        }
        value = (value << 6) | (tail & 0x3F);
    }
    const u32 smallest[4] = {0, 0x80, 0x800, 0x10000};
    if (value < smallest[tail_count] || value > LARGEST_CODE_POINT) {
        return 0;
    }
    *code = value;
    return tail_count + 1;
}

i32 utf8_or_latin1_decode(const char *bytes, u32 *code) {
    const i32 length = utf8_decode(bytes, code);
    if (length == 0 || is_surrogate(*code)) {
        *code = static_cast<u8>(bytes[0]);
        return 1;
    }
    return length;
}

i32 utf8_clean_decode(const char *bytes, u32 *code) {
    const i32 length = utf8_or_latin1_decode(bytes, code);
    if ((*code < 0x20 && *code != 0) || (*code >= 0x7F && *code < 0xA0)) {
        *code = ' ';
    }
    return length;
}

i32 utf8_encode(u32 code, char *bytes) {
    assert(code <= LARGEST_CODE_POINT && bytes != nullptr);
    if (code < 0x80) {
        bytes[0] = static_cast<char>(code);
        return 1;
    }
    const i32 tail_count = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    const u32 lead[4] = {0, 0xC0, 0xE0, 0xF0};
    bytes[0] = static_cast<char>(static_cast<u8>(lead[tail_count] | (code >> (6 * tail_count))));
    for (i32 i = 1; i <= tail_count; ++i) {
        bytes[i] = static_cast<char>(static_cast<u8>(0x80 | ((code >> (6 * (tail_count - i))) & 0x3F)));
    }
    return tail_count + 1;
}
