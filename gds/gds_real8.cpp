#include "gds/gds_real8.h"

#include <cassert>
#include <cmath>
#include <cstring>

f64 gds_real8_to_double(const u8 bytes[8]) {
    assert(bytes != nullptr);
    f64 fraction = 0.0;
    f64 place = 1.0;
    for (i32 i = 1; i < 8; ++i) {
        place /= 256.0;
        fraction += static_cast<f64>(bytes[i]) * place;
    }
    const i32 exponent = (bytes[0] & 0x7F) - 64;
    const f64 value = std::ldexp(fraction, 4 * exponent);  // a power of 16 is one of 2, so this is exact
    return (bytes[0] & 0x80) != 0 ? -value : value;
}

// The fraction lies between 1/16 and 1 and has 56 bits; a double has 53, so nothing is rounded.
void gds_real8_from_double(f64 value, u8 bytes[8]) {
    assert(bytes != nullptr);
    std::memset(bytes, 0, 8);
    if (value == 0.0 || !std::isfinite(value)) {
        return;
    }
    i32 power = 0;  // of two, for a fraction between 1/2 and 1
    f64 fraction = std::frexp(std::fabs(value), &power);
    i32 exponent = (power + 3) >> 2;  // of sixteen, rounded up
    fraction = std::ldexp(fraction, power - 4 * exponent);
    if (exponent < -64) {
        return;
    }
    if (exponent > 63) {
        exponent = 63;
        fraction = 1.0 - std::ldexp(1.0, -53);
    }
    bytes[0] = static_cast<u8>((value < 0.0 ? 0x80 : 0) | (exponent + 64));
    u64 digits = static_cast<u64>(std::ldexp(fraction, 56));
    for (i32 i = 7; i >= 1; --i) {
        bytes[i] = static_cast<u8>(digits);
        digits >>= 8;
    }
}
