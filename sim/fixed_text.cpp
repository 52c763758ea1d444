#include "sim/fixed_text.h"

#include <cassert>
#include <charconv>
#include <cstdio>
#include <cstring>

static constexpr u64 POWERS_OF_TEN[FIXED_TEXT_DECIMALS + 1] = {
    1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000, 10000000000};

static constexpr i32 SIGNIFICAND_BITS = 23;  // of an f32, without the one that is not stored
static constexpr i32 EXPONENT_BIAS = 127;
static constexpr i32 LARGEST_SHIFT = 63 - SIGNIFICAND_BITS - 1;  // keeps a significand within 63 bits

// value / 2^shift, rounded to the nearest integer, and to the even one of two that are as near.
static u64 rounded_shift(u64 value, i32 shift) {
    const u64 quotient = value >> shift;
    const u64 rest = value - (quotient << shift);
    const u64 half = u64{1} << (shift - 1);
    const bool up = rest > half || (rest == half && (quotient & 1) != 0);
    return quotient + (up ? 1 : 0);
}

char *fixed_text_write(char *out, f32 value, i32 decimals) {
    assert(out != nullptr && decimals >= 1 && decimals <= FIXED_TEXT_DECIMALS);
    u32 bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    const i32 stored = static_cast<i32>(bits >> SIGNIFICAND_BITS & 0xFFU);
    const u32 fraction_bits = bits & ((1U << SIGNIFICAND_BITS) - 1);
    // The value is significand * 2^exponent; the smallest numbers lack the bit that is not stored.
    const u64 significand = stored == 0 ? fraction_bits : fraction_bits | 1U << SIGNIFICAND_BITS;
    const i32 exponent = (stored == 0 ? 1 : stored) - EXPONENT_BIAS - SIGNIFICAND_BITS;
    if (exponent > LARGEST_SHIFT) {  // also for nan and infinity
        return out + std::snprintf(out, FIXED_TEXT_SIZE, "%.*f", decimals, static_cast<f64>(value));
    }
    // The number in units of the last decimal, or whole where it has no fraction. With ten decimals the
    // product stays below 2^24 * 10^10 < 2^58, so that a shift by more than 59 bits leaves less than a half.
    const u64 unit = POWERS_OF_TEN[decimals];
    u64 whole = 0;
    u64 fraction = 0;
    if (exponent >= 0) {
        whole = significand << exponent;
    } else if (-exponent < 60) {
        const u64 scaled = rounded_shift(significand * unit, -exponent);
        whole = scaled / unit;
        fraction = scaled % unit;
    }
    if (bits >> 31 != 0) {
        *out++ = '-';
    }
    char *point = std::to_chars(out, out + FIXED_TEXT_SIZE / 2, whole).ptr;
    // The unit in front keeps the leading zeros; its digit gives way to the point.
    char *end = std::to_chars(point, point + FIXED_TEXT_SIZE / 2, unit + fraction).ptr;
    *point = '.';
    return end;
}
