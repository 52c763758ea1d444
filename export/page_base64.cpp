#include "export/page_base64.h"

#include <cassert>

static const char DIGITS[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Bytes that are turned into text at a time; three of them make four digits.
static constexpr i64 PIECE_BYTES = 3 << 12;

// One to three bytes as four digits.
static void write_group(const u8 *bytes, i64 count, char *out) {
    u32 group = 0;
    for (i64 i = 0; i < 3; ++i) {
        group = group << 8 | (i < count ? bytes[i] : 0U);
    }
    for (i32 i = 0; i < 4; ++i) {
        out[i] = i <= count ? DIGITS[group >> (18 - 6 * i) & 63] : '=';
    }
}

void page_base64_put(ExportText *text, const u8 *bytes, i64 size) {
    assert(text != nullptr && (bytes != nullptr || size == 0) && size >= 0);
    char piece[PIECE_BYTES / 3 * 4];
    for (i64 start = 0; start < size; start += PIECE_BYTES) {
        const i64 count = size - start < PIECE_BYTES ? size - start : PIECE_BYTES;
        i64 length = 0;
        for (i64 i = 0; i < count; i += 3, length += 4) {
            write_group(bytes + start + i, count - i, piece + length);
        }
        export_text_put_bytes(text, piece, length);
    }
}
