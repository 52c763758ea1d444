// font.h: bitmap fonts in display lists. Needs a current context.
#pragma once
#include "log/text.h"

struct Font {
    u32 list_base;       // first of 256 display lists, one per byte
    i32 height;          // cell height, pixels
    i32 avg_char_width;  // pixels
    i32 reserved_a;      // 0
    WString *face;       // "Arial"; null while the system gives no such font
    i32 weight;
    i32 reserved_b;  // 0
};

// The font of a height (pixels) and weight, made on first use and kept until font_cache_free. One that the
// system refuses draws nothing and is tried again at the next call.
Font font_get(u32 height, i32 weight);

// Frees the cache entries of this thread's context, which is about to go.
void font_cache_forget_context();

// Frees the cache entries of all contexts; their display lists go with the context.
void font_cache_free();
