#include "export/profile_legend.h"

#include <algorithm>
#include <cassert>

static constexpr f64 SIZE = 13.0;
static constexpr f64 ROW = 24.0;
static constexpr f64 SWATCH_WIDTH = 34.0;
static constexpr f64 SWATCH_HEIGHT = 16.0;
static constexpr f64 GAP = 8.0;             // between a swatch and its name
static constexpr f64 COLUMN_GAP = 24.0;     // behind the longest name
static constexpr f64 LONGEST_NAME = 310.0;  // longer ones are shortened

f64 profile_legend_add(ProfilePage *page, f64 x, f64 y) {
    assert(page != nullptr);
    const ProfileFace *face = &page->face;
    f64 widest = 0.0;
    i32 shown = 0;
    for (i32 i = 0; i < face->materials->count; ++i) {
        if (face->is_shown[i]) {
            const NarrowText name = text_shortened(face->materials->items[i].name, SIZE, LONGEST_NAME);
            widest = std::max(widest, text_width(name.get(), SIZE, false));
            ++shown;
        }
    }
    if (shown == 0) {
        return y;
    }
    const f64 column = SWATCH_WIDTH + GAP + widest + COLUMN_GAP;
    const i32 columns = std::clamp(truncate_i32((PAGE_WIDTH - 2.0 * x + COLUMN_GAP) / column), 1, shown);
    const i32 rows = (shown + columns - 1) / columns;
    i32 at = 0;
    for (i32 i = face->materials->count - 1; i >= 0; --i) {
        if (!face->is_shown[i]) {
            continue;
        }
        const i32 row = at % rows;
        const i32 column_at = at / rows;
        const f64 left = x + column * column_at;
        const f64 top = y + ROW * row;
        const PageBox swatch = {left, top, SWATCH_WIDTH, SWATCH_HEIGHT, i};
        array_append(&page->swatches.items, &page->swatches.count, &page->swatches.capacity, swatch);
        const NarrowText name = text_shortened(face->materials->items[i].name, SIZE, LONGEST_NAME);
        drawn_texts_add(&page->texts,
                        {left + SWATCH_WIDTH + GAP, top + 0.5 * SWATCH_HEIGHT + 0.36 * SIZE, SIZE,
                         TEXT_FROM_LEFT, false, false, 0.0, 0},
                        name.get());
        ++at;
    }
    return y + ROW * rows;
}
