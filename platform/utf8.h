// utf8.h: single code points as UTF-8, for the conversion of texts at the border to the system. What a system
// does with bytes that are not text is told in its text_convert.cpp.
#pragma once
#include "platform/base.h"

inline constexpr u32 LARGEST_CODE_POINT = 0x10FFFF;

// Halves of UTF-16 pairs, which no valid text contains; read and written here like other code points.
inline bool is_surrogate(u32 code) {
    return code >= 0xD800 && code <= 0xDFFF;
}

// Reads one code point at `bytes` (zero-terminated). Returns the number of bytes it takes, 1 to 4, or 0 when
// they are not UTF-8; `code` is then untouched. The terminator reads as the code point 0.
i32 utf8_decode(const char *bytes, u32 *code);

// The same where every byte stands for something: one that is not part of UTF-8, or begins half a pair, is
// the Latin-1 character of its number and takes 1.
i32 utf8_or_latin1_decode(const char *bytes, u32 *code);

// The same for a text that is shown or stored as one line: of control characters (C0, delete and C1) blanks
// are made. The terminator reads as 0.
i32 utf8_clean_decode(const char *bytes, u32 *code);

// Writes one code point (at most LARGEST_CODE_POINT) as 1 to 4 bytes and returns their number.
i32 utf8_encode(u32 code, char *bytes);
