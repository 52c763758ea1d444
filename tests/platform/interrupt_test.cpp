#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include "platform/platform.h"

// Takes the first signal as a request and is ended by the second. Exits with a code of its own where
// it should not.
static void interrupted_twice(int first, int second) {
    static std::atomic<i32> flag{0};
    PlatformSemaphore *semaphore = platform_semaphore_create();
    platform_interrupt_watch(&flag, semaphore);
    if (flag != 0) {
        std::_Exit(10);
    }
    std::raise(first);
    platform_semaphore_wait(semaphore);
    if (flag != 1) {
        std::_Exit(11);
    }
    std::raise(second);
    std::_Exit(12);
}

TEST(PlatformInterruptWatchDeathTest, TheFirstIsARequestTheSecondEndsTheProgram) {
    const struct {
        int first;
        int second;
    } cases[] = {{SIGINT, SIGINT}, {SIGTERM, SIGTERM}, {SIGINT, SIGTERM}, {SIGTERM, SIGINT}};
    for (const auto &c : cases) {
        EXPECT_EXIT(interrupted_twice(c.first, c.second), testing::KilledBySignal(c.second), "")
            << "signals " << c.first << " and " << c.second;
    }
}

static void interrupted_without_semaphore() {
    static std::atomic<i32> flag{0};
    platform_interrupt_watch(&flag, nullptr);
    std::raise(SIGTERM);
    std::_Exit(flag == 1 ? 0 : 1);
}

TEST(PlatformInterruptWatchDeathTest, TheSemaphoreMayBeAbsent) {
    EXPECT_EXIT(interrupted_without_semaphore(), testing::ExitedWithCode(0), "");
}

TEST(PlatformInterrupted, FollowsTheFlagThatIsWatched) {
    EXPECT_FALSE(platform_interrupted()) << "nothing is watched";
    std::atomic<i32> flag{0};
    platform_interrupt_watch(&flag, nullptr);
    EXPECT_FALSE(platform_interrupted());
    flag = 1;
    EXPECT_TRUE(platform_interrupted());
    platform_interrupt_watch(nullptr, nullptr);
    EXPECT_FALSE(platform_interrupted());
}

static void interrupted_after_forgetting() {
    std::atomic<i32> flag{0};
    platform_interrupt_watch(&flag, nullptr);
    platform_interrupt_watch(nullptr, nullptr);
    std::raise(SIGTERM);
    std::_Exit(1);
}

TEST(PlatformInterruptWatchDeathTest, WithoutAFlagTheFirstEndsTheProgram) {
    EXPECT_EXIT(interrupted_after_forgetting(), testing::KilledBySignal(SIGTERM), "");
}
