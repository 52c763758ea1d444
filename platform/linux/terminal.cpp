#include "platform/terminal.h"

#include <unistd.h>

bool platform_is_terminal(std::FILE *stream) {
    return isatty(fileno(stream)) != 0;
}
