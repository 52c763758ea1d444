// The desktop program, one of whose allocations fails: QUARN_TEST_TRIP names how many come before it.
#include <cstdlib>

#include "app/gtk/desktop.h"
#include "platform/memory.h"

int main(int argc, char **argv) {
    const char *trip = std::getenv("QUARN_TEST_TRIP");
    memory_trip_after(trip != nullptr ? std::atoll(trip) : -1);
    return desktop_main(argc, argv);
}
