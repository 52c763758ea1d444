// Sums of two doubles carry about 106 bits (T. J. Dekker, "A floating-point technique for extending the
// available precision", 1971). The angle is reduced to an eighth of a turn about a multiple of a quarter
// turn, and the power series are summed there.
#include "platform/trigonometry.h"

#include <cassert>
#include <cmath>

// The value hi + lo; lo is at most half of the last place of hi.
struct Pair {
    f64 hi, lo;
};

static constexpr f64 LARGEST_ANGLE = 1048576.0;  // so that the products below are exact
static constexpr f64 SMALLEST_ANGLE = 0x1p-27;   // below it the sine is the angle, the cosine 1
static constexpr f64 QUARTERS_PER_RADIAN = 0.6366197723675814;

// A quarter turn in parts of 31 bits.
static constexpr f64 QUARTER_TURN[5] = {0x1.921fb54400000p+0, 0x1.0b4611a400000p-34, 0x1.13198a2c00000p-65,
                                        0x1.01b839a000000p-96, 0x1.29024e0800000p-127};

static Pair sum_exact(f64 a, f64 b) {
    const f64 sum = a + b;
    const f64 b_part = sum - a;
    return {sum, (a - (sum - b_part)) + (b - b_part)};
}

// Cuts a double into two halves whose products are exact.
static Pair halves(f64 value) {
    const f64 scaled = 134217729.0 * value;  // 2^27 + 1
    const f64 high = scaled - (scaled - value);
    return {high, value - high};
}

static Pair product_exact(f64 a, f64 b) {
    const Pair x = halves(a);
    const Pair y = halves(b);
    const f64 product = a * b;
    return {product, ((x.hi * y.hi - product) + x.hi * y.lo + x.lo * y.hi) + x.lo * y.lo};
}

static Pair add(Pair a, Pair b) {
    const Pair high = sum_exact(a.hi, b.hi);
    const Pair low = sum_exact(a.lo, b.lo);
    const Pair sum = sum_exact(high.hi, high.lo + low.hi);
    return sum_exact(sum.hi, sum.lo + low.lo);
}

static Pair multiply(Pair a, Pair b) {
    const Pair product = product_exact(a.hi, b.hi);
    return sum_exact(product.hi, product.lo + (a.hi * b.lo + a.lo * b.hi));
}

static Pair divide(Pair a, Pair b) {
    const f64 first = a.hi / b.hi;
    Pair rest = add(a, multiply(b, {-first, 0.0}));
    const f64 second = rest.hi / b.hi;
    rest = add(rest, multiply(b, {-second, 0.0}));
    const Pair quotient = sum_exact(first, second);
    return sum_exact(quotient.hi, quotient.lo + rest.hi / b.hi);
}

// The angle less `quarters` quarter turns.
static Pair reduce(f64 angle, f64 quarters) {
    Pair rest = {angle, 0.0};
    for (const f64 part : QUARTER_TURN) {
        rest = add(rest, {-quarters * part, 0.0});
    }
    return rest;
}

// The coefficients of the power series, those of the highest powers first: 1/27!, 1/25!, ..., 1/3! and
// 1/28!, ..., 1/2!, with their signs. The next ones add less than 2^-106 to the results.
static constexpr Pair SINE_SERIES[13] = {
    {-0x1.d1ab1c2dccea3p-94, -0x1.054d0c78aea14p-149}, {0x1.3f3ccdd165fa9p-84, -0x1.58ddadf344487p-139},
    {-0x1.761b41316381ap-75, 0x1.3423c7d91404fp-130},  {0x1.71b8ef6dcf572p-66, -0x1.d043ae40c4647p-120},
    {-0x1.2f49b46814157p-57, -0x1.2650f61dbdcb4p-112}, {0x1.952c77030ad4ap-49, 0x1.ac981465ddc6cp-103},
    {-0x1.ae7f3e733b81fp-41, -0x1.1d8656b0ee8cbp-97},  {0x1.6124613a86d09p-33, 0x1.f28e0cc748ebep-87},
    {-0x1.ae64567f544e4p-26, 0x1.c062e06d1f209p-80},   {0x1.71de3a556c734p-19, -0x1.c154f8ddc6c00p-73},
    {-0x1.a01a01a01a01ap-13, -0x1.a01a01a01a01ap-73},  {0x1.1111111111111p-7, 0x1.1111111111111p-63},
    {-0x1.5555555555555p-3, -0x1.5555555555555p-57}};
static constexpr Pair COSINE_SERIES[14] = {
    {0x1.0a18a2635085dp-98, 0x1.b9e2e28e1aa54p-153},  {-0x1.88e85fc6a4e5ap-89, 0x1.71c37ebd16540p-143},
    {0x1.f2cf01972f578p-80, -0x1.9ada5fcc1ab14p-135}, {-0x1.0ce396db7f853p-70, 0x1.aebcdbd20331cp-124},
    {0x1.e542ba4020225p-62, 0x1.ea72b4afe3c2fp-120},  {-0x1.6827863b97d97p-53, -0x1.eec01221a8b0bp-107},
    {0x1.ae7f3e733b81fp-45, 0x1.1d8656b0ee8cbp-101},  {-0x1.93974a8c07c9dp-37, -0x1.05d6f8a2efd1fp-92},
    {0x1.1eed8eff8d898p-29, -0x1.2aec959e14c06p-83},  {-0x1.27e4fb7789f5cp-22, -0x1.cbbc05b4fa99ap-76},
    {0x1.a01a01a01a01ap-16, 0x1.a01a01a01a01ap-76},   {-0x1.6c16c16c16c17p-10, 0x1.f49f49f49f49fp-65},
    {0x1.5555555555555p-5, 0x1.5555555555555p-59},    {-0x1.0000000000000p-1, -0x0.0p+0}};

template <size_t COUNT>
static Pair series(const Pair (&coefficients)[COUNT], Pair square) {
    Pair sum = coefficients[0];
    for (size_t i = 1; i < COUNT; ++i) {
        sum = add(multiply(sum, square), coefficients[i]);
    }
    return multiply(sum, square);
}

struct SineAndCosine {
    Pair sine, cosine;
};

static SineAndCosine sine_and_cosine(f64 angle) {
    const f64 quarters = std::floor(angle * QUARTERS_PER_RADIAN + 0.5);
    const Pair rest = reduce(angle, quarters);
    const Pair square = multiply(rest, rest);
    const Pair sine = add(rest, multiply(rest, series(SINE_SERIES, square)));
    const Pair cosine = add({1.0, 0.0}, series(COSINE_SERIES, square));
    switch (static_cast<i32>(quarters) & 3) {
        case 1: return {cosine, {-sine.hi, -sine.lo}};
        case 2: return {{-sine.hi, -sine.lo}, {-cosine.hi, -cosine.lo}};
        case 3: return {{-cosine.hi, -cosine.lo}, sine};
        default: return {sine, cosine};
    }
}

// False for nan too.
static bool is_in_range(f64 angle) {
    return std::fabs(angle) <= LARGEST_ANGLE;
}

void exact_sin_cos(f64 angle, f64 *sine, f64 *cosine) {
    assert(sine != nullptr && cosine != nullptr);
    // Most angles come many times in a row: the cells of a layout are turned by the same few.
    struct Last {
        f64 angle, sine, cosine;
    };
    static thread_local Last last = {0.0, 0.0, 1.0};
    if (!is_in_range(angle)) {
        *sine = std::sin(angle);
        *cosine = std::cos(angle);
        return;
    }
    if (std::fabs(angle) < SMALLEST_ANGLE) {
        *sine = angle;
        *cosine = 1.0;
        return;
    }
    if (angle != last.angle) {
        const SineAndCosine both = sine_and_cosine(angle);
        last = {angle, both.sine.hi, both.cosine.hi};
    }
    *sine = last.sine;
    *cosine = last.cosine;
}

f64 exact_tan(f64 angle) {
    if (!is_in_range(angle)) {
        return std::tan(angle);
    }
    if (std::fabs(angle) < SMALLEST_ANGLE) {
        return angle;
    }
    const SineAndCosine both = sine_and_cosine(angle);
    return divide(both.sine, both.cosine).hi;
}
