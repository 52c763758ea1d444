#include "render/fine_legend.h"

#include <GL/glew.h>

#include <cassert>
#include <cmath>
#include <cwchar>

#include "platform/wide_text.h"
#include "render/legend.h"
#include "render/picture_text.h"
#include "render/solid_rectangle.h"
#include "sim/layer.h"

// Pixels of the plain style.
static constexpr i32 FONT_HEIGHT = 30;
static constexpr i32 SWATCH_LEFT = 6;
static constexpr i32 SWATCH_WIDTH = 62;
static constexpr i32 SWATCH_GAP = 4;  // above and below, half of what is between two
static constexpr i32 OUTLINE = 2;
static constexpr i32 NAME_LEFT = 80;
static constexpr i32 COLUMN_GAP = 24;  // between names and thicknesses, and behind these

static constexpr f32 OUTLINE_COLOR[3] = {0.35F, 0.35F, 0.35F};

void thickness_format(f32 thickness, wchar_t text[32]) {
    assert(text != nullptr);
    const f64 nanometres = static_cast<f64>(thickness) * 1000.0;
    if (!(std::fabs(nanometres) >= 0.05)) {
        std::swprintf(text, 32, L"%ls", nanometres > 0.0 ? L"<0.1 nm" : L"-");
        return;
    }
    const bool micrometres = nanometres >= 999.95;  // what would read 1000 nm
    i32 length = micrometres ? std::swprintf(text, 32, L"%.3f", nanometres / 1000.0)
                             : std::swprintf(text, 32, L"%.1f", nanometres);
    while (length > 0 && text[length - 1] == L'0') {
        --length;
    }
    if (length > 0 && text[length - 1] == L'.') {
        --length;
    }
    std::swprintf(text + length, static_cast<size_t>(32 - length), micrometres ? L" um" : L" nm");
}

static WideText layer_name(const Layer *layer) {
    return wide_from_bytes(layer->legend_name != nullptr ? layer->legend_name : "");
}

// Where the parts of the rows stand, pixels.
struct Columns {
    i32 name_left, name_room;
    i32 thickness_right;
    i32 width;  // of all
};

static Columns find_columns(const Scene *scene) {
    const Stack *stack = scene->stack;
    const PictureStyle *style = scene->style;
    const i32 height = picture_pixels(style, FONT_HEIGHT);
    i32 longest_name = 0;
    i32 longest_thickness = 0;
    for (i32 i = 0; i < stack->layer_count; ++i) {
        const Layer *layer = stack->layers[i];
        if (layer == nullptr) {
            continue;
        }
        wchar_t thickness[32];
        thickness_format(layer_middle_thickness(layer), thickness);
        const i32 name_width = picture_text_width(layer_name(layer).get(), height);
        const i32 thickness_width = picture_text_width(thickness, height);
        longest_name = name_width > longest_name ? name_width : longest_name;
        longest_thickness = thickness_width > longest_thickness ? thickness_width : longest_thickness;
    }
    Columns columns = {};
    columns.name_left = picture_pixels(style, NAME_LEFT);
    const i32 rest = columns.name_left + longest_thickness + 2 * picture_pixels(style, COLUMN_GAP);
    const i32 most = style->width / 5 * 2;
    columns.name_room = rest + longest_name <= most ? longest_name : most > rest ? most - rest : 0;
    columns.width = rest + columns.name_room;
    columns.thickness_right = columns.width - picture_pixels(style, COLUMN_GAP);
    return columns;
}

i32 fine_legend_width(const Scene *scene) {
    assert(scene != nullptr && scene->stack != nullptr && scene->style != nullptr);
    return find_columns(scene).width;
}

static void draw_swatch(const Scene *scene, const Layer *layer, i32 y0, i32 y1) {
    const PictureStyle *style = scene->style;
    const i32 left = picture_pixels(style, SWATCH_LEFT);
    const i32 right = left + picture_pixels(style, SWATCH_WIDTH);
    const i32 gap = picture_pixels(style, SWATCH_GAP);
    const i32 line = picture_pixels(style, OUTLINE);
    if (y1 - y0 <= 2 * (gap + line)) {
        return;  // rows so low that there is no room for one
    }
    const i32 low = y0 + gap;
    const i32 high = y1 - gap;
    solid_rectangle(left, low, right, low + line, OUTLINE_COLOR);
    solid_rectangle(left, high - line, right, high, OUTLINE_COLOR);
    solid_rectangle(left, low, left + line, high, OUTLINE_COLOR);
    solid_rectangle(right - line, low, right, high, OUTLINE_COLOR);
    glViewport(left + line, low + line, right - left - 2 * line, high - low - 2 * line);
    legend_draw_swatch(layer->color, 1.0F, 0, 1, 1);
}

static void draw_texts(const Scene *scene, const Columns *columns, const Layer *layer, i32 y0, i32 y1) {
    const i32 usual = picture_pixels(scene->style, FONT_HEIGHT);
    const i32 height = usual <= y1 - y0 ? usual : y1 - y0;
    if (height < 1) {
        return;
    }
    const i32 baseline = (y0 + y1) / 2 - picture_text_drop(height);
    const WideText name = picture_text_fit(layer_name(layer).get(), height, columns->name_room);
    picture_text_draw(columns->name_left, baseline, name.get(), height);
    wchar_t thickness[32];
    thickness_format(layer_middle_thickness(layer), thickness);
    picture_text_draw(columns->thickness_right - picture_text_width(thickness, height), baseline, thickness,
                      height);
}

void fine_legend_draw(const Scene *scene, i32 image_height, i32 title_height) {
    assert(scene != nullptr && scene->stack != nullptr && image_height > 0 && title_height >= 0);
    const Stack *stack = scene->stack;
    const Columns columns = find_columns(scene);
    const i32 row_height = picture_pixels(scene->style, LEGEND_ROW_HEIGHT);
    const i32 rows_height = image_height - title_height > 0 ? image_height - title_height : 1;
    i32 k = 0;
    for (i32 i = 0; i < stack->layer_count; ++i) {
        const Layer *layer = stack->layers[i];
        if (layer == nullptr) {
            continue;
        }
        i32 y0 = 0;
        i32 y1 = 0;
        legend_scaled_row_extent(k++, stack->live_layer_count, row_height, rows_height, &y0, &y1);
        draw_swatch(scene, layer, y0, y1);
        draw_texts(scene, &columns, layer, y0, y1);
    }
}
