#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "platform/platform.h"

TEST(PlatformClock, CountsTimeInWhichTheProgramOnlyWaits) {
    const f64 start = platform_clock_ms();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_GE(platform_clock_ms() - start, 29.0) << "elapsed time, not that of the processor";
}

static f64 stopped_clock() {
    return 1234.5;
}

TEST(PlatformClock, CanBeReplacedAndRestored) {
    const f64 before = platform_clock_ms();
    platform_clock_replace(stopped_clock);
    EXPECT_EQ(platform_clock_ms(), 1234.5);
    platform_clock_replace(nullptr);
    EXPECT_GE(platform_clock_ms(), before);
}
