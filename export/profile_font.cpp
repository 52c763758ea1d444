#include "export/profile_font.h"

#include <cairo.h>

#include <cassert>
#include <cstring>

#include "platform/owned.h"
#include "platform/utf8.h"

static constexpr char USUAL_FAMILY[] = "Arial";

void profile_cairo_prepare() {
    // Making a pattern makes the locks; the language lets one thread alone do it.
    static const bool prepared = [] {
        cairo_pattern_destroy(cairo_pattern_create_rgb(0.0, 0.0, 0.0));
        return true;
    }();
    static_cast<void>(prepared);
}

// Without hints, which would round widths to those of a screen. Destroyed with cairo_scaled_font_destroy.
static cairo_scaled_font_t *scaled_font(const char *family, f64 size, bool bold) {
    profile_cairo_prepare();
    cairo_font_face_t *face = cairo_toy_font_face_create(
        family, CAIRO_FONT_SLANT_NORMAL, bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_matrix_t scale;
    cairo_matrix_t identity;
    cairo_matrix_init_scale(&scale, size, size);
    cairo_matrix_init_identity(&identity);
    cairo_font_options_t *options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_scaled_font_t *font = cairo_scaled_font_create(face, &scale, &identity, options);
    cairo_font_options_destroy(options);
    cairo_font_face_destroy(face);
    return font;
}

static bool family_has(const char *family, const char *letter, i32 size, bool bold) {
    cairo_scaled_font_t *font = scaled_font(family, 12.0, bold);
    cairo_glyph_t *glyphs = nullptr;
    int count = 0;
    const cairo_status_t status = cairo_scaled_font_text_to_glyphs(font, 0.0, 0.0, letter, size, &glyphs,
                                                                   &count, nullptr, nullptr, nullptr);
    const bool has = status == CAIRO_STATUS_SUCCESS && count == 1 && glyphs[0].index != 0;
    cairo_glyph_free(glyphs);
    cairo_scaled_font_destroy(font);
    return has;
}

// Arial has all of ASCII; looking for other letters takes its time.
static void find_family(const char *letter, i32 size, u32 code, bool bold,
                        char family[PLATFORM_FAMILY_SIZE]) {
    std::strcpy(family, USUAL_FAMILY);
    char other[PLATFORM_FAMILY_SIZE];
    if (code >= 0x80 && !family_has(USUAL_FAMILY, letter, size, bold) &&
        platform_text_family(code, bold, other) && family_has(other, letter, size, bold)) {
        std::strcpy(family, other);
    }
}

FontRun font_run_first(const char *text, bool bold) {
    assert(text != nullptr && text[0] != 0);
    FontRun run = {};
    while (text[run.size] != 0) {
        u32 code = 0;
        const i32 size = utf8_or_latin1_decode(text + run.size, &code);
        char family[PLATFORM_FAMILY_SIZE];
        find_family(text + run.size, size, code, bold, family);
        if (run.size == 0) {
            std::strcpy(run.family, family);
        } else if (std::strcmp(run.family, family) != 0) {
            break;
        }
        run.size += size;
    }
    return run;
}

f64 font_run_width(const FontRun *run, const char *text, f64 size, bool bold) {
    assert(run != nullptr && text != nullptr);
    cairo_scaled_font_t *font = scaled_font(run->family, size, bold);
    const NarrowText part = memory_scratch<char>(run->size + 1);
    std::memcpy(part.get(), text, static_cast<size_t>(run->size));
    part[run->size] = 0;
    cairo_text_extents_t extents = {};
    cairo_scaled_font_text_extents(font, part.get(), &extents);
    cairo_scaled_font_destroy(font);
    return extents.x_advance;
}
