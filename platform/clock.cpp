#include <atomic>
#include <chrono>

#include "platform/platform.h"

static std::atomic<PlatformClock> replaced_clock{nullptr};

void platform_clock_replace(PlatformClock clock) {
    replaced_clock = clock;
}

f64 platform_clock_ms() {
    PlatformClock clock = replaced_clock;
    if (clock != nullptr) {
        return clock();
    }
    auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<f64, std::milli>(now).count();
}
