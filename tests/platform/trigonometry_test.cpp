#include "platform/trigonometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/test_support.h"

static f64 sine_of(f64 angle) {
    f64 sine = 0;
    f64 cosine = 0;
    exact_sin_cos(angle, &sine, &cosine);
    return sine;
}

static f64 cosine_of(f64 angle) {
    f64 sine = 0;
    f64 cosine = 0;
    exact_sin_cos(angle, &sine, &cosine);
    return cosine;
}

// The f64 nearest to half a turn is 1.2246467991473532e-16 less than half a turn, and so on in proportion; to
// first order that is the sine there.
TEST(ExactSinCos, KeepsWhatIsLeftOfWholeTurns) {
    EXPECT_EQ(sine_of(PI), 1.2246467991473532e-16);
    EXPECT_EQ(sine_of(-PI), -1.2246467991473532e-16);
    EXPECT_EQ(sine_of(2 * PI), -2.4492935982947064e-16);
    EXPECT_EQ(cosine_of(PI / 2), 6.123233995736766e-17);
    EXPECT_EQ(cosine_of(-PI / 2), 6.123233995736766e-17);
    EXPECT_EQ(sine_of(PI / 2), 1.0);
    EXPECT_EQ(cosine_of(PI), -1.0);
    EXPECT_EQ(exact_tan(PI), -1.2246467991473532e-16);
}

TEST(ExactSinCos, SmallAnglesAreTheirOwnSine) {
    for (const f64 angle : {0.0, 1e-9, 5e-324, 1e-300}) {
        EXPECT_EQ(sine_of(angle), angle);
        EXPECT_EQ(sine_of(-angle), -angle);
        EXPECT_EQ(cosine_of(angle), 1.0);
        EXPECT_EQ(exact_tan(-angle), -angle);
    }
    EXPECT_TRUE(std::signbit(sine_of(-0.0)));
    EXPECT_TRUE(std::signbit(exact_tan(-0.0)));
}

TEST(ExactSinCos, WhatIsNoNumberGivesNone) {
    const f64 infinity = std::numeric_limits<f64>::infinity();
    for (const f64 angle : {infinity, -infinity, std::numeric_limits<f64>::quiet_NaN()}) {
        EXPECT_TRUE(std::isnan(sine_of(angle)));
        EXPECT_TRUE(std::isnan(cosine_of(angle)));
        EXPECT_TRUE(std::isnan(exact_tan(angle)));
    }
}

TEST(ExactSinCos, TakesAnglesBeyondItsRange) {
    for (const f64 angle : {1048576.0, 1048577.0, 1e15, -1e15}) {
        const f64 sine = sine_of(angle);
        const f64 cosine = cosine_of(angle);
        EXPECT_NEAR(sine * sine + cosine * cosine, 1.0, 1e-15) << angle;
    }
}

// Half the distance to the next f64, and what the C library's wider type may be off, 1/1000 of that.
static f64 half_place(f64 value) {
    const f64 next = std::nextafter(std::fabs(value), std::numeric_limits<f64>::infinity());
    return (next - std::fabs(value)) * 0.5 * 1.001;
}

// The wider floating-point type has eleven bits more, where there is one.
TEST(ExactSinCos, IsTheNearestNumber) {
    if (sizeof(long double) == sizeof(f64) || std::numeric_limits<long double>::digits < 64) {
        GTEST_SKIP() << "there is no wider type to compare with";
    }
    TestRandom random = test_random_start(3);
    for (i32 i = 0; i < 200000; ++i) {
        // In an eighth of a turn about a multiple of a quarter turn other than 0 the C library of some
        // systems loses the wider type's last bits.
        f64 angle = static_cast<f64>(test_random_f32(&random, -0.78F, 0.78F));
#ifndef _WIN32
        angle *= i % 2 == 0 ? 1.0 : 100.0;
#endif
        const f64 sine = sine_of(angle);
        const f64 cosine = cosine_of(angle);
        const f64 tangent = exact_tan(angle);
        auto wide = static_cast<long double>(angle);
        ASSERT_LE(std::fabs(static_cast<f64>(std::sin(wide) - static_cast<long double>(sine))),
                  half_place(sine))
            << "sine of " << angle;
        ASSERT_LE(std::fabs(static_cast<f64>(std::cos(wide) - static_cast<long double>(cosine))),
                  half_place(cosine))
            << "cosine of " << angle;
        ASSERT_LE(std::fabs(static_cast<f64>(std::tan(wide) - static_cast<long double>(tangent))),
                  half_place(tangent))
            << "tangent of " << angle;
    }
}

// The same angle again, and another one between.
TEST(ExactSinCos, RemembersNothingWrong) {
    const f64 first = sine_of(0.5);
    EXPECT_EQ(sine_of(0.5), first);
    EXPECT_NE(sine_of(0.75), first);
    EXPECT_EQ(sine_of(0.5), first);
    EXPECT_EQ(sine_of(-0.5), -first);
    EXPECT_EQ(cosine_of(-0.5), cosine_of(0.5));
    EXPECT_EQ(sine_of(0.0), 0.0);
}

// Of a right triangle with sides 1 and 1, 1 and root 3: the nearest f64 of the angle is so near that the
// tangents differ in the last place at most.
TEST(ExactTan, KnowsTheTrianglesOfSchool) {
    EXPECT_NEAR(exact_tan(45.0 * PI / 180.0), 1.0, 2e-16);
    EXPECT_NEAR(exact_tan(60.0 * PI / 180.0), 1.7320508075688772, 5e-16);
    EXPECT_NEAR(exact_tan(-30.0 * PI / 180.0), -0.5773502691896258, 2e-16);
}
