// fixed_text.h: numbers as text with a fixed number of decimals, many times faster than printf.
#pragma once
#include "platform/base.h"

inline constexpr i32 FIXED_TEXT_DECIMALS = 10;  // at most
inline constexpr i32 FIXED_TEXT_SIZE = 64;      // bytes that one number never exceeds

// Writes a number as printf's "%.*f" does: rounded to the nearest text, and to the even one of two that are
// as near; "nan", "inf" and a sign before zero as the C library has them. No terminator.
//   out        room for FIXED_TEXT_SIZE bytes
//   decimals   1 to FIXED_TEXT_DECIMALS
// Returns where the text ends.
char *fixed_text_write(char *out, f32 value, i32 decimals);
