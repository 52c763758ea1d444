#include "export/profile_paint.h"

#include <cairo.h>

#include <cassert>

#include "export/profile_hatch.h"

// The lines around all films are as wide as what is painted of each film beyond its outline, so that they
// cover it.
static constexpr f64 LINE_WIDTH = 0.4;
static constexpr f64 HATCH_WIDTH = 0.4;
static constexpr f64 RULER_WIDTH = 0.8;
static constexpr f64 HATCH_SHARE = 0.4;  // of black or white in the colour of a hatch

static void add_point(cairo_t *cairo, const ProfilePage *page, BorderPoint point, bool first) {
    const f64 x = profile_page_x(page, static_cast<f64>(point.station));
    const f64 y = profile_page_y(page, point.height);
    if (first) {
        cairo_move_to(cairo, x, y);
    } else {
        cairo_line_to(cairo, x, y);
    }
}

// A film is filled and has a narrow line of its own colour around it. Where two films touch, viewers that
// smooth edges would let the paper shine through between them; the line of one lies beneath the other
// instead.
static void paint_material(cairo_t *cairo, const ProfilePage *page, i32 material) {
    const ProfileOutline *outline = &page->outline;
    for (i32 i = 0; i < outline->ring_count; ++i) {
        const OutlineRing *ring = &outline->rings[i];
        for (i32 k = 0; ring->region == material && k < ring->count; ++k) {
            add_point(cairo, page, outline->points[ring->first + k], k == 0);
        }
        if (ring->region == material) {
            cairo_close_path(cairo);
        }
    }
    const f32 *color = page->face.materials->items[material].color;
    cairo_set_source_rgba(cairo, f64{color[0]}, f64{color[1]}, f64{color[2]}, f64{color[3]});
    cairo_fill_preserve(cairo);
    cairo_stroke(cairo);
}

static void paint_borders(cairo_t *cairo, const ProfilePage *page) {
    const ProfileOutline *outline = &page->outline;
    for (i32 i = 0; i < outline->border_count; ++i) {
        const OutlineBorder *border = &outline->borders[i];
        for (i32 k = 0; k < border->count; ++k) {
            add_point(cairo, page, outline->points[border->first + k], k == 0);
        }
        if (border->closed) {
            cairo_close_path(cairo);
        }
    }
    cairo_set_source_rgb(cairo, 0.0, 0.0, 0.0);
    cairo_stroke(cairo);
}

static void stroke_hatch(cairo_t *cairo, const ProfilePage *page, i32 material, const HatchLines *lines) {
    const PageColor color = material_on_white(&page->face.materials->items[material]);
    const f64 ink = color_brightness(color) < 0.5 ? 1.0 : 0.0;
    const auto mixed = [ink](f64 share) { return share + (ink - share) * HATCH_SHARE; };
    for (i32 i = 0; i < lines->count; ++i) {
        cairo_move_to(cairo, lines->items[i].from.x, lines->items[i].from.y);
        cairo_line_to(cairo, lines->items[i].to.x, lines->items[i].to.y);
    }
    cairo_set_source_rgb(cairo, mixed(color.red), mixed(color.green), mixed(color.blue));
    cairo_stroke(cairo);
}

static void hatch_material(cairo_t *cairo, const ProfilePage *page, i32 material) {
    const ProfileOutline *outline = &page->outline;
    const Owned<HatchPoint[]> points = memory_scratch<HatchPoint>(outline->point_count);
    const Owned<HatchRing[]> rings = memory_scratch<HatchRing>(outline->ring_count);
    i32 count = 0;
    for (i32 i = 0; i < outline->ring_count; ++i) {
        const OutlineRing *ring = &outline->rings[i];
        if (ring->region != material) {
            continue;
        }
        for (i32 k = ring->first; k < ring->first + ring->count; ++k) {
            points[k] = {profile_page_x(page, static_cast<f64>(outline->points[k].station)),
                         profile_page_y(page, outline->points[k].height)};
        }
        rings[count++] = {points.get() + ring->first, ring->count};
    }
    HatchLines lines = {};
    profile_hatch_add(material, rings.get(), count, &lines);
    stroke_hatch(cairo, page, material, &lines);
}

static void paint_swatch(cairo_t *cairo, const ProfilePage *page, const PageBox *box) {
    const f32 *color = page->face.materials->items[box->material].color;
    cairo_rectangle(cairo, box->x, box->y, box->width, box->height);
    cairo_set_source_rgba(cairo, f64{color[0]}, f64{color[1]}, f64{color[2]}, f64{color[3]});
    cairo_fill(cairo);
    const HatchPoint corners[4] = {{box->x, box->y},
                                   {box->x + box->width, box->y},
                                   {box->x + box->width, box->y + box->height},
                                   {box->x, box->y + box->height}};
    const HatchRing ring = {corners, 4};
    HatchLines lines = {};
    profile_hatch_add(box->material, &ring, 1, &lines);
    stroke_hatch(cairo, page, box->material, &lines);
    cairo_rectangle(cairo, box->x, box->y, box->width, box->height);
    cairo_set_source_rgb(cairo, 0.0, 0.0, 0.0);
    cairo_stroke(cairo);
}

static void paint_plate(cairo_t *cairo, const ProfilePage *page, const PageBox *box) {
    const PageColor color = material_on_white(&page->face.materials->items[box->material]);
    cairo_rectangle(cairo, box->x, box->y, box->width, box->height);
    cairo_set_source_rgb(cairo, color.red, color.green, color.blue);
    cairo_fill(cairo);
}

void profile_paint(cairo_t *cairo, const ProfilePage *page) {
    assert(cairo != nullptr && page != nullptr);
    cairo_set_source_rgb(cairo, 1.0, 1.0, 1.0);
    cairo_paint(cairo);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_width(cairo, LINE_WIDTH);
    for (i32 material = 0; material < page->face.materials->count; ++material) {
        if (page->face.is_shown[material]) {
            paint_material(cairo, page, material);
        }
    }
    cairo_set_line_width(cairo, HATCH_WIDTH);
    for (i32 material = 0; material < page->face.materials->count; ++material) {
        if (page->face.is_shown[material]) {
            hatch_material(cairo, page, material);
        }
    }
    cairo_set_line_width(cairo, LINE_WIDTH);
    paint_borders(cairo, page);
    for (i32 i = 0; i < page->plates.count; ++i) {
        paint_plate(cairo, page, &page->plates.items[i]);
    }
    for (i32 i = 0; i < page->swatches.count; ++i) {
        paint_swatch(cairo, page, &page->swatches.items[i]);
    }
    cairo_set_line_width(cairo, RULER_WIDTH);
    for (i32 i = 0; i < page->strokes.count; ++i) {
        const PageLine *line = &page->strokes.items[i];
        cairo_move_to(cairo, line->x0, line->y0);
        cairo_line_to(cairo, line->x1, line->y1);
    }
    cairo_set_source_rgb(cairo, 0.0, 0.0, 0.0);
    cairo_stroke(cairo);
}
