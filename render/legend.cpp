#include "render/legend.h"

#include <GL/glew.h>
#include <cassert>
#include <cstring>
#include "render/fine_legend.h"
#include "render/text.h"
#include "sim/layer.h"

static constexpr f32 SWATCH_WIDTH = 72.0F;  // pixels
static constexpr i32 NAME_LEFT = 77;        // pixels
static constexpr i32 FONT_HEIGHT = 30;      // pixels
static constexpr i32 NAME_RISE = 2;         // pixels above the lower edge of a row

void legend_row_extent(i32 k, i32 rows, i32 image_height, i32 *y0, i32 *y1) {
    legend_scaled_row_extent(k, rows, LEGEND_ROW_HEIGHT, image_height, y0, y1);
}

void legend_scaled_row_extent(i32 k, i32 rows, i32 row_height, i32 image_height, i32 *y0, i32 *y1) {
    assert(k >= 0 && k < rows && row_height > 0 && image_height > 0);
    const i64 needed = static_cast<i64>(rows) * row_height;
    f32 scale = 1.0F;
    if (needed > image_height) {
        scale = static_cast<f32>(image_height) / static_cast<f32>(needed);
    }
    const f32 low = static_cast<f32>(static_cast<i64>(k) * row_height);
    const f32 high = static_cast<f32>((static_cast<i64>(k) + 1) * row_height);
    *y0 = truncate_i32(low * scale);
    *y1 = truncate_i32(high * scale);
}

NarrowText legend_name_cut(const char *name, i32 limit) {
    assert(name != nullptr);
    const size_t kept = limit > 3 ? static_cast<size_t>(limit) - 3 : 0;
    const size_t length = std::strlen(name);
    if (length < kept) {
        NarrowText copy = memory_scratch<char>(static_cast<i64>(length) + 1);
        std::memcpy(copy.get(), name, length + 1);
        return copy;
    }
    NarrowText cut = memory_scratch<char>(static_cast<i64>(kept) + 4);
    std::memcpy(cut.get(), name, kept);
    std::memcpy(cut.get() + kept, "...", 4);
    return cut;
}

void legend_draw_swatch(const f32 color[4], f32 right, i32 y0, i32 y1, i32 image_height) {
    const f32 low = 2.0F * static_cast<f32>(y0) / static_cast<f32>(image_height) - 1.0F;
    const f32 high = 2.0F * static_cast<f32>(y1) / static_cast<f32>(image_height) - 1.0F;
    glColor4f(color[0], color[1], color[2], color[3]);
    glBegin(GL_QUADS);
    glVertex2f(-1.0F, low);
    glVertex2f(right, low);
    glVertex2f(right, high);
    glVertex2f(-1.0F, high);
    glEnd();
}

i32 legend_width(const Scene *scene) {
    assert(scene != nullptr && scene->stack != nullptr && scene->style != nullptr);
    if (scene->stack->show_legend == 0) {
        return 0;
    }
    return scene->style->fine ? fine_legend_width(scene) : picture_pixels(scene->style, LEGEND_WIDTH);
}

static void draw_plain(const Scene *scene, i32 image_height, i32 title_height) {
    const Stack *stack = scene->stack;
    const PictureStyle *style = scene->style;
    const i32 width = picture_pixels(style, LEGEND_WIDTH);
    const i32 name_left = picture_pixels(style, NAME_LEFT);
    const i32 row_height = picture_pixels(style, LEGEND_ROW_HEIGHT);
    const i32 rows_height = image_height - title_height > 0 ? image_height - title_height : 1;
    const Font font = font_get(static_cast<u32>(picture_pixels(style, FONT_HEIGHT)), 700);
    const i32 limit = font.avg_char_width > 0 ? (width - name_left) / font.avg_char_width : 0;
    const f32 right = SWATCH_WIDTH * 2.0F / static_cast<f32>(LEGEND_WIDTH) - 1.0F;
    glViewport(0, 0, width, image_height);
    i32 k = 0;
    for (i32 i = 0; i < stack->layer_count; ++i) {
        const Layer *layer = stack->layers[i];
        if (layer == nullptr) {
            continue;
        }
        i32 y0 = 0;
        i32 y1 = 0;
        legend_scaled_row_extent(k++, stack->live_layer_count, row_height, rows_height, &y0, &y1);
        legend_draw_swatch(layer->color, right, y0, y1, image_height);
        const NarrowText name =
            legend_name_cut(layer->legend_name != nullptr ? layer->legend_name : "", limit);
        text_draw_window_styled(style, static_cast<f32>(name_left),
                                static_cast<f32>(y0 + picture_pixels(style, NAME_RISE)), name.get(), &font);
    }
}

void legend_draw(const Scene *scene, i32 image_height, i32 title_height) {
    assert(scene != nullptr && scene->stack != nullptr && image_height > 0 && title_height >= 0);
    if (scene->style->fine) {
        fine_legend_draw(scene, image_height, title_height);
    } else {
        draw_plain(scene, image_height, title_height);
    }
}
