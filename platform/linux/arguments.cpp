#include "platform/platform.h"

char **platform_arguments(i32 *count, char **given) {
    static_cast<void>(count);
    return given;
}
