// trigonometry.h: sine, cosine and tangent, rounded to the nearest f64. The C libraries differ in the last
// bit, and heights and layouts have to be the same on all systems.
#pragma once
#include "platform/base.h"

inline constexpr f64 PI = 3.141592653589793;

// Of an angle in radians. Beyond 2^20 radians, and for what is no number, the results are the C library's.
void exact_sin_cos(f64 angle, f64 *sine, f64 *cosine);

// The same for the tangent.
f64 exact_tan(f64 angle);
