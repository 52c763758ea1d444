#include "platform/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cassert>

bool platform_is_terminal(std::FILE *stream) {
    assert(stream != nullptr);
    return isatty(fileno(stream)) != 0;
}

i32 platform_terminal_columns(std::FILE *stream) {
    assert(stream != nullptr);
    winsize size = {};
    return ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}
