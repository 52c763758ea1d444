#include "export/profile_text.h"

#include <cassert>
#include <cstring>

#include "export/export_text.h"
#include "export/profile_font.h"
#include "platform/utf8.h"

static constexpr char DOTS[] = "\xE2\x80\xA6";

static NarrowText copy_of(const char *text, i64 size) {
    NarrowText copy(memory_new_array<char>(size + 1));
    std::memcpy(copy.get(), text, static_cast<size_t>(size));
    copy[size] = 0;
    return copy;
}

void drawn_texts_add(DrawnTexts *texts, const DrawnText &style, const char *text) {
    assert(texts != nullptr && text != nullptr);
    DrawnText item = style;
    item.text = texts->size;
    for (const char *at = text;; ++at) {
        array_append(&texts->bytes, &texts->size, &texts->bytes_capacity, *at);
        if (*at == 0) {
            break;
        }
    }
    array_append(&texts->items, &texts->count, &texts->capacity, item);
}

const char *drawn_text(const DrawnTexts *texts, i32 item) {
    assert(texts != nullptr && item >= 0 && item < texts->count);
    return texts->bytes.get() + texts->items[item].text;
}

f64 text_width(const char *text, f64 size, bool bold) {
    assert(text != nullptr);
    f64 width = 0.0;
    while (*text != 0) {
        const FontRun run = font_run_first(text, bold);
        width += font_run_width(&run, text, size, bold);
        text += run.size;
    }
    return width;
}

NarrowText text_shortened(const char *text, f64 size, f64 most) {
    assert(text != nullptr);
    ExportText clean = {};
    const Owned<ExportText> owner(&clean);
    export_text_put_clean(&clean, text);
    if (clean.size == 0) {
        return copy_of("", 0);
    }
    NarrowText whole = copy_of(clean.bytes, clean.size);
    if (text_width(whole.get(), size, false) <= most) {
        return whole;
    }
    // The longest beginning that fits, among those that end between characters.
    const Owned<i64[]> ends = memory_scratch<i64>(clean.size + 1);
    i64 count = 0;
    for (const char *at = whole.get(); *at != 0;) {
        u32 code = 0;
        ends[count++] = at - whole.get();
        at += utf8_or_latin1_decode(at, &code);
    }
    i64 fits = 0;
    i64 too_long = count;
    NarrowText trial(memory_new_array<char>(clean.size + i64{sizeof(DOTS)}));
    while (too_long - fits > 1) {
        const i64 middle = (fits + too_long) / 2;
        std::memcpy(trial.get(), whole.get(), static_cast<size_t>(ends[middle]));
        std::memcpy(trial.get() + ends[middle], DOTS, sizeof(DOTS));
        (text_width(trial.get(), size, false) <= most ? fits : too_long) = middle;
    }
    std::memcpy(trial.get(), whole.get(), static_cast<size_t>(ends[fits]));
    std::memcpy(trial.get() + ends[fits], DOTS, sizeof(DOTS));
    return trial;
}
