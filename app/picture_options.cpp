#include "app/picture_options.h"

#include <cassert>
#include <cstdlib>
#include <cstring>

#include "log/log.h"
#include "log/shown_text.h"
#include "platform/wide_text.h"
#include "process/color_table.h"
#include "render/scene.h"

const PictureOptionForm PICTURE_OPTION_FORMS[PICTURE_OPTION_COUNT] = {
    {"width", PICTURE_OPTION_WIDTH},           {"quality", PICTURE_OPTION_QUALITY},
    {"z-scale", PICTURE_OPTION_Z_SCALE},       {"title", PICTURE_OPTION_TITLE},
    {"background", PICTURE_OPTION_BACKGROUND},
};

static bool read_width(const char *value, i32 *width) {
    if (value[0] == 0 || std::strspn(value, "0123456789") != std::strlen(value) || std::strlen(value) > 9) {
        return false;
    }
    *width = static_cast<i32>(std::strtol(value, nullptr, 10));
    return *width >= SMALLEST_PICTURE_WIDTH && *width <= LARGEST_PICTURE_WIDTH;
}

// Digits with at most one point.
static bool read_scale(const char *value, f32 *scale) {
    char *end = nullptr;
    if (std::strspn(value, "0123456789.") != std::strlen(value)) {
        return false;
    }
    *scale = std::strtof(value, &end);
    return end != value && *end == 0 && *scale >= SMALLEST_VERTICAL_SCALE && *scale <= LARGEST_VERTICAL_SCALE;
}

static bool read_quality(const char *value, bool *fine) {
    *fine = std::strcmp(value, "fine") == 0;
    return *fine || std::strcmp(value, "plain") == 0;
}

const char *picture_option_read(PictureOptions *options, PictureOption option, const char *value) {
    assert(options != nullptr && value != nullptr);
    switch (option) {
        case PICTURE_OPTION_WIDTH:
            return read_width(value, &options->width)
                       ? nullptr
                       : "--width takes a number of pixels from 320 to 16384, not";
        case PICTURE_OPTION_QUALITY:
            options->quality_given = true;
            return read_quality(value, &options->fine) ? nullptr : "--quality takes plain or fine, not";
        case PICTURE_OPTION_Z_SCALE:
            options->scale_given = true;
            return read_scale(value, &options->vertical_scale)
                       ? nullptr
                       : "--z-scale takes a number from 0.1 to 1000, not";
        case PICTURE_OPTION_TITLE: options->title = value; return nullptr;
        case PICTURE_OPTION_BACKGROUND: options->background = value; return nullptr;
    }
    return nullptr;
}

// "#RRGGBB"
static bool read_hexadecimal(const char *text, f32 color[3]) {
    if (text[0] != '#' || std::strlen(text) != 7 || std::strspn(text + 1, "0123456789abcdefABCDEF") != 6) {
        return false;
    }
    const u32 value = static_cast<u32>(std::strtoul(text + 1, nullptr, 16));
    for (i32 i = 0; i < 3; ++i) {
        color[i] = static_cast<f32>((value >> (16 - 8 * i)) & 0xFF) / 255.0F;
    }
    return true;
}

static WString *unknown_color(const char *name) {
    const char *nearest = name[0] != 0 && name[0] != '#' ? color_nearest(name) : nullptr;
    if (nearest != nullptr) {
        return wstring_make(L"--background: unknown color \"%ls\"; did you mean \"%ls\"?",
                            shown_text(name).text, shown_text(nearest).text);
    }
    return wstring_make(
        L"--background: unknown color \"%ls\"; none, \"#RRGGBB\" and the names of colors.txt "
        L"can be given",
        shown_text(name).text);
}

WString *picture_options_apply(const PictureOptions *options, AppState *state) {
    assert(options != nullptr && state != nullptr);
    PictureStyle style = PLAIN_STYLE;
    picture_style_set_width(&style, options->width);
    style.fine = options->fine;
    style.vertical_scale = options->vertical_scale;
    if (options->background != nullptr) {
        if (std::strcmp(options->background, "none") == 0) {
            for (f32 &part : style.background) {
                part = 0.0F;
            }
        } else if (!read_hexadecimal(options->background, style.background) &&
                   color_lookup(options->background, style.background) != 0) {
            return unknown_color(options->background);
        }
    }
    wstring_free(state->picture_title);
    state->picture_title = nullptr;
    if (options->title != nullptr) {
        state->picture_title = wstring_copy(wide_from_bytes(options->title).get());
        style.title = wstring_text(state->picture_title);
    }
    state->picture_style = style;
    if (options->quality_given) {
        state->picture_wish.quality_chosen = true;
        state->picture_wish.fine = options->fine;
    }
    if (options->scale_given) {
        state->picture_wish.vertical_scale = options->vertical_scale;
    }
    return nullptr;
}

WString *picture_width_fault(i32 width) {
    const i32 largest = scene_largest_width();
    return width <= largest
               ? nullptr
               : wstring_make(L"pictures can be %d pixels wide at most here, not %d", largest, width);
}

i32 picture_options_start(const PictureOptions *options, AppState *state) {
    assert(options != nullptr && state != nullptr);
    Owned<WString> fault(picture_options_apply(options, state));
    if (fault == nullptr) {
        fault.reset(picture_width_fault(options->width));
    }
    if (fault != nullptr) {
        message_show(wstring_text(fault.get()));
    }
    return fault == nullptr ? 0 : 1;
}
