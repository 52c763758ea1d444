#include "platform/decimal_power.h"

#include <cassert>

f64 decimal_power(f64 value) {
    assert(value >= 1e-300 && value <= 1e300);
    f64 power = 1.0;
    if (value >= 1.0) {
        while (value / power >= 10.0) {
            power *= 10.0;
        }
        return power;
    }
    while (value * power < 1.0) {
        power *= 10.0;
    }
    return 1.0 / power;
}
