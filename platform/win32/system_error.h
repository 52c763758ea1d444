// system_error.h: the reason of the last failed call, one per thread.
#pragma once
#include "platform/base.h"

// Beside the system's own codes: a device where a file was expected.
inline constexpr u32 SYSTEM_ERROR_DEVICE = 0xFFFFFFFF;

// Keeps an error code of the system (ERROR_...) for platform_error_text on this thread.
void system_error_set(u32 code);

// Keeps what GetLastError tells.
void system_error_set_last();

// The code that is kept.
u32 system_error_get();
