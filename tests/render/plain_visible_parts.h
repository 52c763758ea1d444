// plain_visible_parts.h: the plain twin of visible_parts_find, quad by quad.
#pragma once
#include "render/visible_parts.h"

// As visible_parts_find.
SlotRun plain_visible_parts_find(const Stack *stack, i32 slot, SlotRun run, u8 *parts);
