#include "platform/platform.h"

// The system's heap gives large blocks back by itself.
void platform_memory_give_back() {}
