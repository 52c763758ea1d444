// Linked into quarn-batch beside its main: one of its allocations fails. QUARN_TEST_TRIP names how many come
// before it; without that all succeed, and how many they were is told on standard error at the end.
#include <cstdio>
#include <cstdlib>

#include "platform/memory.h"
#include "tests/desktop/memory_trips.h"

static void tell_allocations() {
    std::fputs(trip_allocations_line(TRIP_FAR_AWAY).c_str(), stderr);
}

static bool arm() {
    const i64 trip = trip_environment("QUARN_TEST_TRIP", TRIP_FAR_AWAY);
    memory_trip_after(trip);
    if (trip == TRIP_FAR_AWAY) {
        std::atexit(tell_allocations);
    }
    return true;
}

[[maybe_unused]] static const bool armed = arm();
