// gds_real8.h: the floating-point numbers of GDSII.
#pragma once
#include "platform/base.h"

// An 8-byte real: sign, base-16 exponent biased by 64, 56-bit fraction.
f64 gds_real8_to_double(const u8 bytes[8]);

// The nearest such number; of what is no finite number, and of what is too small, 0; of what is too large,
// the largest.
void gds_real8_from_double(f64 value, u8 bytes[8]);
