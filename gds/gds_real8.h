// gds_real8.h: the floating-point numbers of GDSII.
#pragma once
#include "platform/base.h"

// An 8-byte real: sign, base-16 exponent biased by 64, 56-bit fraction.
f64 gds_real8_to_double(const u8 bytes[8]);
