// lanes.h: a few values side by side in one register of 16 bytes, for the inner loops of the kernels.
// Each lane is computed as the scalar would be, so results do not depend on their number.
#pragma once
#include <cstring>
#include "platform/base.h"

typedef f32 F32x4 __attribute__((vector_size(16)));
typedef f64 F64x2 __attribute__((vector_size(16)));
typedef i8 I8x16 __attribute__((vector_size(16)));

// Reads and writes at any address.
template <typename Lanes, typename T>
inline Lanes lanes_load(const T *from) {
    Lanes lanes;
    std::memcpy(&lanes, from, sizeof(lanes));
    return lanes;
}

template <typename Lanes, typename T>
inline void lanes_store(T *to, Lanes lanes) {
    std::memcpy(to, &lanes, sizeof(lanes));
}
