#include "gds/gds_real8.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "tests/gds/gds_bytes.h"
#include "tests/support/test_support.h"

struct RealCase {
    u8 bytes[8];
    f64 value;
};

TEST(GdsReal8, KnownValues) {
    const RealCase cases[] = {
        {{0x00, 0, 0, 0, 0, 0, 0, 0}, 0.0},
        {{0x80, 0, 0, 0, 0, 0, 0, 0}, 0.0},
        {{0x41, 0x10, 0, 0, 0, 0, 0, 0}, 1.0},  // 1/16 x 16^1
        {{0xC1, 0x10, 0, 0, 0, 0, 0, 0}, -1.0},
        {{0x42, 0x5A, 0, 0, 0, 0, 0, 0}, 90.0},  // 0x5A = 90: 90/256 x 16^2
        {{0x40, 0x80, 0, 0, 0, 0, 0, 0}, 0.5},
        {{0x40, 0x00, 0x80, 0, 0, 0, 0, 0}, 0.001953125},     // not normalised: 128/65536
        {{0x40, 0, 0, 0, 0, 0, 0, 1}, std::ldexp(1.0, -56)},  // the last bit of the fraction
        {{0x7F, 0x10, 0, 0, 0, 0, 0, 0}, std::ldexp(1.0, 248)},
        {{0x00, 0x10, 0, 0, 0, 0, 0, 0}, std::ldexp(1.0, -260)},
        {{0xFF, 0xFF, 0, 0, 0, 0, 0, 0}, -255.0 * std::ldexp(1.0, 244)},
    };
    for (const RealCase &real : cases) {
        EXPECT_EQ(gds_real8_to_double(real.bytes), real.value);
    }
}

TEST(GdsReal8, FullFractionRoundsOnce) {
    // 2^56 - 1 over 2^56 needs 56 bits; the nearest f64 is 1, which 16^0 leaves alone.
    const u8 bytes[8] = {0x40, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(gds_real8_to_double(bytes), 1.0);
}

TEST(GdsReal8, WhatTheTestsWriteIsReadBack) {
    TestRandom random = test_random_start(1);
    for (i32 i = 0; i < 10000; ++i) {
        const f64 value = static_cast<f64>(test_random_i32(&random, -1000000, 1000000)) / 1024.0;
        std::string bytes = bytes_real8(value);
        EXPECT_EQ(gds_real8_to_double(reinterpret_cast<const u8 *>(bytes.data())), value);
    }
}

TEST(GdsReal8, WhatIsWrittenIsNormalised) {
    struct WrittenCase {
        f64 value;
        u8 bytes[8];
    };
    const WrittenCase cases[] = {
        {0.0, {0, 0, 0, 0, 0, 0, 0, 0}},
        {1.0, {0x41, 0x10, 0, 0, 0, 0, 0, 0}},
        {-1.0, {0xC1, 0x10, 0, 0, 0, 0, 0, 0}},
        {90.0, {0x42, 0x5A, 0, 0, 0, 0, 0, 0}},
        {0.5, {0x40, 0x80, 0, 0, 0, 0, 0, 0}},
        {0.0625, {0x40, 0x10, 0, 0, 0, 0, 0, 0}},
        {std::ldexp(1.0, -300), {0, 0, 0, 0, 0, 0, 0, 0}},                         // too small
        {std::ldexp(1.0, 300), {0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xF8}},  // too large: 53 bits
        {static_cast<f64>(NAN), {0, 0, 0, 0, 0, 0, 0, 0}},
    };
    for (const WrittenCase &c : cases) {
        u8 bytes[8];
        gds_real8_from_double(c.value, bytes);
        EXPECT_EQ(std::vector<u8>(bytes, bytes + 8), std::vector<u8>(c.bytes, c.bytes + 8)) << c.value;
    }
}

TEST(GdsReal8, WhatIsWrittenReadsBackTheSame) {
    TestRandom random = test_random_start(8);
    for (i32 round = 0; round < 20000; ++round) {
        const f64 fraction =
            static_cast<f64>(test_random_u32(&random)) * 4294967296.0 + test_random_u32(&random);
        const f64 value = std::ldexp(fraction, test_random_i32(&random, -300, 180));
        u8 bytes[8];
        gds_real8_from_double(test_random_bool(&random, 0.5) ? -value : value, bytes);
        EXPECT_EQ(std::fabs(gds_real8_to_double(bytes)), value);
    }
}
