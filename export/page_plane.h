// page_plane.h: the heights of one surface as numbers that pack well, and back to bytes. A plane is a value
// per grid point, index m * N + n with column n and row m.
//
// Most of a plane is level, or rises by as much from point to point, or is as it was before the step, or lies
// a film's thickness above another plane. So a plane is written as its difference from another one (or from
// nothing) less what the neighbours let expect: the left one, the one in front, and once more the one that
// both count. What remains is mostly 0. All differences wrap around at 32 bits, so that every plane comes
// back bit by bit.
#pragma once
#include "platform/base.h"

// Quanta per micrometre that heights are counted in, where none is above `largest` micrometres: a million, or
// as many powers of ten fewer as it takes to stay below PAGE_LARGEST_HEIGHT.
inline constexpr i32 PAGE_LARGEST_HEIGHT = 1 << 30;  // so that the difference of two heights fits as well
f64 page_plane_quanta(f64 largest);

// Heights in micrometres as whole numbers of quanta, the nearest, halves to even: with a million to the
// micrometre what a print with six decimals shows. What is no number is 0, what is beyond the largest height
// is that height.
void page_plane_quantize(const f32 *heights, i64 count, f64 quanta, i32 *out);

// What remains of a plane, with the sign in the lowest bit: 0, -1, 1, -2, 2 are 0, 1, 2, 3, 4.
//   reference   a plane of the same grid, or null for none
//   out         N * M values
// Returns how many are not 0.
i64 page_plane_remainder(const i32 *plane, const i32 *reference, i32 grid_n, i32 grid_m, u32 *out);

// How many bytes the largest of the values takes: 0 for 0 to 4.
i32 page_plane_bytes(const u32 *values, i64 count);

// Byte `index` of each value, 0 for the lowest.
void page_plane_byte(const u32 *values, i64 count, i32 index, u8 *out);
