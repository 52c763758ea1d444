#include <windows.h>

#include "platform/platform.h"

static std::atomic<i32> *watched_flag = nullptr;
static PlatformSemaphore *watched_semaphore = nullptr;
static volatile LONG interrupts = 0;

// Runs on a thread that the system starts for it. Closing the console, logging off and shutting down
// end the program as usual.
static BOOL WINAPI on_console_event(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        return FALSE;
    }
    if (InterlockedIncrement(&interrupts) > 1) {
        return FALSE;  // the system's own handler ends the program
    }
    *watched_flag = 1;
    if (watched_semaphore != nullptr) {
        platform_semaphore_post(watched_semaphore);
    }
    return TRUE;
}

void platform_interrupt_watch(std::atomic<i32> *flag, PlatformSemaphore *semaphore) {
    SetConsoleCtrlHandler(on_console_event, FALSE);
    watched_flag = flag;
    watched_semaphore = semaphore;
    InterlockedExchange(&interrupts, 0);
    if (flag != nullptr) {
        SetConsoleCtrlHandler(on_console_event, TRUE);
    }
}

bool platform_interrupted() {
    return watched_flag != nullptr && *watched_flag != 0;
}
