#include "platform/terminal.h"

#include <unistd.h>

#include <cassert>

bool platform_is_terminal(std::FILE *stream) {
    assert(stream != nullptr);
    return isatty(fileno(stream)) != 0;
}
