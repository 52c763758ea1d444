// text_family.h: which family of faces has a letter, for texts that another library draws.
#pragma once
#include "platform/base.h"

inline constexpr i32 PLATFORM_FAMILY_SIZE = 128;

// The name (UTF-8) of a family with a character, the one nearest to Arial that the system knows. False when
// there is none, or its name is too long. Any thread.
bool platform_text_family(u32 character, bool bold, char family[PLATFORM_FAMILY_SIZE]);
