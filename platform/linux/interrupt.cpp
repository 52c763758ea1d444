#include <cerrno>
#include <csignal>

#include "platform/platform.h"

static_assert(std::atomic<i32>::is_always_lock_free, "a signal handler may wait for nobody");

static std::atomic<i32> *watched_flag = nullptr;
static PlatformSemaphore *watched_semaphore = nullptr;

static void handle_all(void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;  // reading and writing under way go on
    sigemptyset(&action.sa_mask);
    sigaddset(&action.sa_mask, SIGINT);
    sigaddset(&action.sa_mask, SIGTERM);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

// Runs inside a signal handler: only calls that are safe there.
static void on_interrupt(int) {
    const int saved = errno;
    handle_all(SIG_DFL);  // the next one ends the program, whichever of the two it is
    *watched_flag = 1;
    if (watched_semaphore != nullptr) {
        platform_semaphore_post(watched_semaphore);
    }
    errno = saved;
}

void platform_interrupt_watch(std::atomic<i32> *flag, PlatformSemaphore *semaphore) {
    watched_flag = flag;
    watched_semaphore = semaphore;
    handle_all(flag != nullptr ? on_interrupt : SIG_DFL);
}

bool platform_interrupted() {
    return watched_flag != nullptr && *watched_flag != 0;
}
