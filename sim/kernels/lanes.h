// lanes.h: a few values side by side in one register of 16 bytes, for the inner loops of the kernels.
// Each lane is computed as the scalar would be, so results do not depend on their number, nor on
// whether the compiler knows such registers; for one that does not, lanes are plain arrays.
#pragma once
#include <cstring>
#include "platform/base.h"

// The larger of two values, or of each pair of lanes: `best` unless `value` beats it, so also where one of
// them is nan. For scalars too.
template <typename Lanes>
inline Lanes lanes_larger(Lanes value, Lanes best) {
    return value > best ? value : best;
}

// The smaller, likewise.
template <typename Lanes>
inline Lanes lanes_smaller(Lanes value, Lanes best) {
    return value < best ? value : best;
}

#if defined(__GNUC__) && !defined(QUARN_PLAIN_LANES)

// Lanes: values side by side in one register.
typedef f32 F32x4 __attribute__((vector_size(16)));
typedef f64 F64x2 __attribute__((vector_size(16)));
typedef i8 I8x16 __attribute__((vector_size(16)));

#else

// Lanes of a compiler that has no such registers.
template <typename T, i32 COUNT>
struct PlainLanes {
    T lane[COUNT];

    PlainLanes &operator+=(const PlainLanes &other) {
        for (i32 i = 0; i < COUNT; ++i) {
            lane[i] = static_cast<T>(lane[i] + other.lane[i]);
        }
        return *this;
    }
    PlainLanes &operator-=(const PlainLanes &other) {
        for (i32 i = 0; i < COUNT; ++i) {
            lane[i] = static_cast<T>(lane[i] - other.lane[i]);
        }
        return *this;
    }
    friend PlainLanes operator-(PlainLanes left, const PlainLanes &right) { return left -= right; }
};

using F32x4 = PlainLanes<f32, 4>;
using F64x2 = PlainLanes<f64, 2>;
using I8x16 = PlainLanes<i8, 16>;

// As above, lane by lane.
template <typename T, i32 COUNT>
inline PlainLanes<T, COUNT> lanes_larger(PlainLanes<T, COUNT> value, PlainLanes<T, COUNT> best) {
    for (i32 i = 0; i < COUNT; ++i) {
        best.lane[i] = lanes_larger(value.lane[i], best.lane[i]);
    }
    return best;
}

// As above, lane by lane.
template <typename T, i32 COUNT>
inline PlainLanes<T, COUNT> lanes_smaller(PlainLanes<T, COUNT> value, PlainLanes<T, COUNT> best) {
    for (i32 i = 0; i < COUNT; ++i) {
        best.lane[i] = lanes_smaller(value.lane[i], best.lane[i]);
    }
    return best;
}

#endif

// Reads lanes at any address.
template <typename Lanes, typename T>
inline Lanes lanes_load(const T *from) {
    Lanes lanes;
    std::memcpy(&lanes, from, sizeof(lanes));
    return lanes;
}

// Writes lanes at any address.
template <typename Lanes, typename T>
inline void lanes_store(T *to, Lanes lanes) {
    std::memcpy(to, &lanes, sizeof(lanes));
}
