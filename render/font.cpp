#include "render/font.h"

#include <GL/glew.h>
#include <cassert>
#include <mutex>
#include "platform/memory.h"
#include "platform/platform.h"
#include "render/picture_text.h"

// A font belongs to the context whose display lists it has.
struct CachedFont {
    Font font;
    const void *context;
};

// The fonts made so far, of all contexts; few, so that a search from the start is enough. Several threads may
// draw, each with a context of its own.
static CachedFont *cache_fonts;
static i32 cache_count;
static i32 cache_capacity;
static std::mutex cache_lock;

// The entry of a font of this thread's context, new and without lists when it is not there.
static Font *find_entry(i32 height, i32 weight) {
    const void *context = platform_gl_identity();
    for (i32 i = 0; i < cache_count; ++i) {
        Font *font = &cache_fonts[i].font;
        if (font->height == height && font->weight == weight && cache_fonts[i].context == context) {
            return font;
        }
    }
    Font font = {};
    font.height = height;
    font.weight = weight;
    font.list_base = glGenLists(256);
    const CachedFont cached = {font, context};
    array_append(&cache_fonts, &cache_count, &cache_capacity, cached);
    return &cache_fonts[cache_count - 1].font;
}

Font font_get(u32 height, i32 weight) {
    assert(height > 0 && weight > 0);
    assert(platform_gl_is_current());
    const std::lock_guard<std::mutex> lock(cache_lock);
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

void font_cache_forget_context() {
    const std::lock_guard<std::mutex> lock(cache_lock);
    const void *context = platform_gl_identity();
    i32 kept = 0;
    for (i32 i = 0; i < cache_count; ++i) {
        if (cache_fonts[i].context == context) {
            wstring_free(cache_fonts[i].font.face);
        } else {
            cache_fonts[kept++] = cache_fonts[i];
        }
    }
    cache_count = kept;
}

void font_cache_free() {
    picture_text_free_faces();
    const std::lock_guard<std::mutex> lock(cache_lock);
    for (i32 i = 0; i < cache_count; ++i) {
        wstring_free(cache_fonts[i].font.face);
    }
    memory_free(cache_fonts);
    cache_fonts = nullptr;
    cache_count = 0;
    cache_capacity = 0;
}
