#include "platform/platform.h"

// The headers above tell which C library it is.
#ifdef __GLIBC__
#include <malloc.h>
#endif

void platform_memory_give_back() {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}
