// extremum.h: what tells a running maximum from a running minimum, as template arguments.
#pragma once
#include <cmath>
#include "sim/kernels/lanes.h"

// START is where a running extremum starts, NEUTRAL what never changes one; take keeps the better
// of both and passes over a nan `value`.
struct RunningMaximum {
    static constexpr f32 START = 0.0F;
    static constexpr f32 NEUTRAL = -HUGE_VALF;
    static bool is_better(f32 value, f32 than) { return value > than; }
    template <typename Lanes>
    static Lanes take(Lanes value, Lanes best) {
        return lanes_larger(value, best);
    }
};

struct RunningMinimum {
    static constexpr f32 START = F32_MAX;
    static constexpr f32 NEUTRAL = HUGE_VALF;
    static bool is_better(f32 value, f32 than) { return value < than; }
    template <typename Lanes>
    static Lanes take(Lanes value, Lanes best) {
        return lanes_smaller(value, best);
    }
};
