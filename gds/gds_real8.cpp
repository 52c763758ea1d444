#include "gds/gds_real8.h"

#include <cassert>
#include <cmath>

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
