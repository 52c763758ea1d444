// base.h: the number types of the whole program and the conversions between them whose result
// must not depend on the compiler or the machine.
#pragma once
#include <cstddef>
#include <cstdint>

using i8 = std::int8_t;
using u8 = std::uint8_t;
using i16 = std::int16_t;
using u16 = std::uint16_t;
using i32 = std::int32_t;
using u32 = std::uint32_t;
using i64 = std::int64_t;
using u64 = std::uint64_t;
using f32 = float;
using f64 = double;

inline constexpr i32 I32_MIN = INT32_MIN;
inline constexpr i32 I32_MAX = INT32_MAX;
inline constexpr i64 I64_MIN = INT64_MIN;
inline constexpr i64 I64_MAX = INT64_MAX;
inline constexpr f32 F32_MAX = 3.402823466e+38F;         // the largest finite f32
inline constexpr f32 F32_MIN_NORMAL = 1.175494351e-38F;  // 2^-126, the smallest normal f32

static_assert(sizeof(f32) == 4 && sizeof(f64) == 8, "the results rely on IEEE 754 single and double");

// Truncates toward zero. A value that does not fit, or nan, gives the smallest integer, as the
// processor's own conversion does.
inline i32 truncate_i32(f64 value) {
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<i32>(value) : I32_MIN;
}

// The same for 64 bits.
inline i64 truncate_i64(f64 value) {
    return value >= -9223372036854775808.0 && value < 9223372036854775808.0 ? static_cast<i64>(value)
                                                                            : I64_MIN;
}

// Sum and difference that wrap around at the ends of the range, as layout coordinates do.
inline i32 wrap_add(i32 a, i32 b) {
    return static_cast<i32>(static_cast<u32>(a) + static_cast<u32>(b));
}

// a less b.
inline i32 wrap_subtract(i32 a, i32 b) {
    return static_cast<i32>(static_cast<u32>(a) - static_cast<u32>(b));
}
