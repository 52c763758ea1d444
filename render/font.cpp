#include "render/font.h"

#include <GL/glew.h>
#include <cassert>
#include "platform/memory.h"
#include "platform/platform.h"
#include "render/picture_text.h"

// The fonts made so far; few, so that a search from the start is enough.
static Font *cache_fonts;
static i32 cache_count;
static i32 cache_capacity;

// The entry of a font, new and without lists when it is not there.
static Font *find_entry(i32 height, i32 weight) {
    for (i32 i = 0; i < cache_count; ++i) {
        if (cache_fonts[i].height == height && cache_fonts[i].weight == weight) {
            return &cache_fonts[i];
        }
    }
    Font font = {};
    font.height = height;
    font.weight = weight;
    font.list_base = glGenLists(256);
    array_append(&cache_fonts, &cache_count, &cache_capacity, font);
    return &cache_fonts[cache_count - 1];
}

Font font_get(u32 height, i32 weight) {
    assert(height > 0 && weight > 0);
    assert(platform_gl_is_current());
    Font *font = find_entry(static_cast<i32>(height), weight);
    // One that could not be made has no face yet and draws nothing; it is tried again with the next picture.
    if (font->face == nullptr) {
        PlatformFontMetrics metrics = {};
        const bool made = platform_font_lists(font->list_base, font->height, weight, &metrics);
        font->avg_char_width = metrics.avg_char_width;
        font->face = made ? wstring_copy(L"Arial") : nullptr;
    }
    return *font;
}

void font_cache_free() {
    picture_text_free_faces();
    for (i32 i = 0; i < cache_count; ++i) {
        wstring_free(cache_fonts[i].face);
    }
    memory_free(cache_fonts);
    cache_fonts = nullptr;
    cache_count = 0;
    cache_capacity = 0;
}
