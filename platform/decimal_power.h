// decimal_power.h: round figures, the same bits on every system: the C libraries' pow and log10 differ in the
// last one.
#pragma once
#include "platform/base.h"

// The largest power of ten that is not above a value between 1e-300 and 1e300.
f64 decimal_power(f64 value);
