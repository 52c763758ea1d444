#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>

#include "platform/platform.h"

// A program with a console of its own, so that nobody else gets its Ctrl-C. Exits with 10 and more where it
// should not.
static void interrupted_twice() {
    FreeConsole();
    AllocConsole();
    static std::atomic<i32> flag{0};
    PlatformSemaphore *semaphore = platform_semaphore_create();
    platform_interrupt_watch(&flag, semaphore);
    if (GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0) == FALSE) {
        std::_Exit(10);
    }
    platform_semaphore_wait(semaphore);
    if (flag != 1) {
        std::_Exit(11);
    }
    GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
    Sleep(10000);
    std::_Exit(12);
}

TEST(PlatformInterruptWatchDeathTest, TheFirstIsARequestTheSecondEndsTheProgram) {
    int status = 0;
    auto note = [&status](int code) {
        status = code;
        return true;
    };
    EXPECT_EXIT(interrupted_twice(), note, "");
    EXPECT_TRUE(status < 10 || status > 12) << status;
}
