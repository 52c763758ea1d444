#include "render/font.h"

#include <GL/glew.h>
#include "platform/memory.h"
#include "platform/platform.h"

// The fonts made so far; few, so that a search from the start is enough.
static Font *cache_fonts;
static i32 cache_count;
static i32 cache_capacity;

Font font_get(u32 height, i32 weight) {
    const i32 pixels = static_cast<i32>(height);
    for (i32 i = 0; i < cache_count; i++) {
        if (cache_fonts[i].height == pixels && cache_fonts[i].weight == weight) {
            return cache_fonts[i];
        }
    }
    Font font = {};
    PlatformFontMetrics metrics = {};
    font.list_base = glGenLists(256);
    platform_font_lists(font.list_base, pixels, weight, &metrics);
    font.height = pixels;
    font.avg_char_width = metrics.avg_char_width;
    font.face = wstring_copy(L"Arial");
    font.weight = weight;
    array_append(&cache_fonts, &cache_count, &cache_capacity, font);
    return font;
}

void font_cache_free() {
    for (i32 i = 0; i < cache_count; i++) {
        wstring_free(cache_fonts[i].face);
    }
    memory_free(cache_fonts);
    cache_fonts = nullptr;
    cache_count = 0;
    cache_capacity = 0;
}
