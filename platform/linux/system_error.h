// system_error.h: the reason of the last failed call, one per thread.
#pragma once
#include "platform/base.h"

// Keeps an errno value for platform_error_text on this thread.
void system_error_set(i32 code);
