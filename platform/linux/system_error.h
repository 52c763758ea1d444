// system_error.h: the reason of the last failed call, one per thread.
#pragma once
#include "platform/base.h"

// Beside the values of errno: a device where a file was expected.
inline constexpr i32 SYSTEM_ERROR_DEVICE = -1;

// Keeps an errno value for platform_error_text on this thread.
void system_error_set(i32 code);
