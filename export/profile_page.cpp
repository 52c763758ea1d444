#include "export/profile_page.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "export/profile_areas.h"
#include "export/profile_caption.h"
#include "export/profile_legend.h"
#include "export/profile_ruler.h"

static constexpr f64 MARGIN = 40.0;
static constexpr f64 HEADING_SIZE = 24.0;
static constexpr f64 TITLE_SIZE = 18.0;
static constexpr f64 RULER_SIZE = 12.0;
static constexpr f64 RULER_ROOM = 70.0;  // left of the face
static constexpr f64 RULER_GAP = 8.0;    // between the face and a ruler
static constexpr f64 LONG_STROKE = 8.0;
static constexpr f64 SHORT_STROKE = 4.0;
static constexpr f64 LEAST_STEP = 70.0;          // between figures of the level ruler
static constexpr f64 LEAST_UPRIGHT_STEP = 30.0;  // the same of the upright one
static constexpr f64 MOST_FACE_HEIGHT = 1600.0;
static constexpr f64 LEAST_FACE_HEIGHT = 24.0;
static constexpr f64 FOOT = 40.0;
static constexpr f64 LABEL_SIZE = 14.0;
static constexpr f64 LABEL_ROOM = 6.0;  // around a name within an area

f64 profile_page_x(const ProfilePage *page, f64 station) {
    return page->left + 0.5 * station * f64{page->face.spacing} * page->x_scale;
}

f64 profile_page_y(const ProfilePage *page, f64 height) {
    return page->base - (height - page->face.lowest) * page->z_scale;
}

PageColor material_on_white(const NumberedMaterial *material) {
    assert(material != nullptr);
    const f64 alpha = f64{material->color[3]};
    const auto on_white = [alpha](f32 share) { return 1.0 - alpha + alpha * f64{share}; };
    return {on_white(material->color[0]), on_white(material->color[1]), on_white(material->color[2])};
}

f64 color_brightness(PageColor color) {
    return 0.299 * color.red + 0.587 * color.green + 0.114 * color.blue;
}

static f64 points_a_micrometre(const ProfileFace *face) {
    return face->right > 0.0 ? (PAGE_WIDTH - 2.0 * MARGIN - RULER_ROOM) / face->right : 1.0;
}

// The lowest place of the surface of what lies at the bottom everywhere; the lowest height of all where it
// does not.
static f64 lowest_surface(const ProfileFace *face) {
    const StationPieces *pieces = &face->pieces;
    f64 lowest = face->highest;
    for (i32 station = 0; station + 1 < pieces->station_count; ++station) {
        const bool empty = pieces->first[station] == pieces->first[station + 1];
        const StationPiece *piece = &pieces->items[pieces->first[station]];
        if (empty || piece->left_low > face->lowest || piece->right_low > face->lowest) {
            return face->lowest;
        }
        lowest = std::min({lowest, piece->left_high, piece->right_high});
    }
    return lowest;
}

// Where heights are stretched the substrate, which is as thick as the section is wide in proportion, would be
// most of the page: it goes on as far as FOOT below its surface.
static void cut_foot(ProfilePage *page, f64 vertical_scale) {
    ProfileFace *face = &page->face;
    const f64 surface = lowest_surface(face);
    page->structure = face->highest - surface;
    const f64 foot = surface - FOOT / (points_a_micrometre(face) * vertical_scale);
    if (vertical_scale <= 1.0 || foot <= face->lowest) {
        return;
    }
    face->lowest = foot;
    for (i32 i = 0; i < face->pieces.count; ++i) {
        StationPiece *piece = &face->pieces.items[i];
        piece->left_low = std::max(piece->left_low, foot);
        piece->right_low = std::max(piece->right_low, foot);
    }
    page->is_cut = true;
}

// Equal scales, times the vertical one; what would be higher than a page can be is drawn smaller.
static void choose_scale(ProfilePage *page, f64 vertical_scale) {
    page->x_scale = points_a_micrometre(&page->face);
    page->z_scale = page->x_scale * vertical_scale;
    const f64 height = (page->face.highest - page->face.lowest) * page->z_scale;
    if (height > MOST_FACE_HEIGHT) {
        page->x_scale *= MOST_FACE_HEIGHT / height;
        page->z_scale *= MOST_FACE_HEIGHT / height;
    }
    page->left = MARGIN + RULER_ROOM;
}

static void add_stroke(ProfilePage *page, const PageLine &line) {
    array_append(&page->strokes.items, &page->strokes.count, &page->strokes.capacity, line);
}

static void add_level_ruler(ProfilePage *page) {
    const ProfileRuler ruler = profile_ruler_create(0.0, page->face.right, LEAST_STEP / page->x_scale);
    const f64 y = page->base + RULER_GAP;
    const f64 end = page->left + page->face.right * page->x_scale;
    add_stroke(page, {page->left, y, end, y});
    for (i64 stroke = ruler.first; stroke <= ruler.last; ++stroke) {
        const f64 x = page->left + profile_ruler_place(&ruler, stroke) * page->x_scale;
        const bool figure = profile_ruler_has_figure(&ruler, stroke);
        add_stroke(page, {x, y, x, y + (figure ? LONG_STROKE : SHORT_STROKE)});
        if (figure) {
            char text[32];
            profile_ruler_format(&ruler, stroke, text);
            drawn_texts_add(
                &page->texts,
                {x, y + LONG_STROKE + RULER_SIZE, RULER_SIZE, TEXT_CENTERED, false, false, 0.0, 0}, text);
        }
    }
    drawn_texts_add(&page->texts,
                    {0.5 * (page->left + end), y + LONG_STROKE + 2.3 * RULER_SIZE, RULER_SIZE, TEXT_CENTERED,
                     false, false, 0.0, 0},
                    ruler.in_nanometres ? "nm" : "um");
}

static void add_upright_ruler(ProfilePage *page) {
    const ProfileFace *face = &page->face;
    const ProfileRuler ruler =
        profile_ruler_create(face->lowest, face->highest, LEAST_UPRIGHT_STEP / page->z_scale);
    const f64 x = page->left - RULER_GAP;
    const f64 top = profile_page_y(page, face->highest);
    add_stroke(page, {x, page->base, x, top});
    i32 figures = 0;
    for (i64 stroke = ruler.first; stroke <= ruler.last; ++stroke) {
        const f64 y = profile_page_y(page, profile_ruler_place(&ruler, stroke));
        const bool figure = profile_ruler_has_figure(&ruler, stroke);
        add_stroke(page, {x - (figure ? LONG_STROKE : SHORT_STROKE), y, x, y});
        if (figure) {
            ++figures;
            char text[32];
            profile_ruler_format(&ruler, stroke, text);
            drawn_texts_add(&page->texts,
                            {x - LONG_STROKE - 3.0, y + 0.36 * RULER_SIZE, RULER_SIZE, TEXT_TO_RIGHT, false,
                             false, 0.0, 0},
                            text);
        }
    }
    if (figures > 0) {
        const f64 middle = 0.5 * (page->base + top);
        drawn_texts_add(&page->texts,
                        {MARGIN + RULER_SIZE, middle, RULER_SIZE, TEXT_CENTERED, true, false, 0.0, 0},
                        ruler.in_nanometres ? "nm" : "um");
    }
}

// The names of materials within all areas that have room for them.
static void add_labels(ProfilePage *page) {
    const ProfileFace *face = &page->face;
    const ProfileAreas areas = profile_areas_create(&face->pieces);
    const f64 points_per_station = 0.5 * f64{face->spacing} * page->x_scale;
    const f64 height = LABEL_SIZE + LABEL_ROOM;
    for (i32 area = 0; area < areas.count; ++area) {
        const NumberedMaterial *material = &face->materials->items[areas.items[area].region];
        const NarrowText name = text_shortened(material->name, LABEL_SIZE, 300.0);
        const f64 width = text_width(name.get(), LABEL_SIZE, false) + 2.0 * LABEL_ROOM;
        const i32 stations = truncate_i32(std::ceil((width + 2.0 * LABEL_ROOM) / points_per_station));
        AreaPlace place = {};
        if (name[0] == 0 || stations > areas.station_count ||
            !profile_area_find_room(&areas, area, std::max(stations, 1),
                                    (height + LABEL_ROOM) / page->z_scale, &place)) {
            continue;
        }
        const f64 x = profile_page_x(page, place.station);
        const f64 y = profile_page_y(page, place.height);
        const PageBox plate = {x - 0.5 * width, y - 0.5 * height, width, height, areas.items[area].region};
        array_append(&page->plates.items, &page->plates.count, &page->plates.capacity, plate);
        const bool dark = color_brightness(material_on_white(material)) < 0.5;
        drawn_texts_add(
            &page->texts,
            {x, y + 0.36 * LABEL_SIZE, LABEL_SIZE, TEXT_CENTERED, false, false, dark ? 1.0 : 0.0, 0},
            name.get());
    }
}

// What stands above the face; returns where it ends.
static f64 add_heading(ProfilePage *page, const ExportStep *step) {
    f64 y = MARGIN;
    if (step->heading != nullptr && step->heading[0] != 0) {
        y += HEADING_SIZE;
        profile_add_line(&page->texts, {MARGIN, y, HEADING_SIZE, TEXT_FROM_LEFT, false, true, 0.0, 0},
                         export_text_from_wide(step->heading).get());
        y += 12.0;
    }
    if (step->title != nullptr && step->title[0] != 0) {
        y += TITLE_SIZE;
        profile_add_line(&page->texts, {MARGIN, y, TITLE_SIZE, TEXT_FROM_LEFT, false, false, 0.0, 0},
                         export_text_from_wide(step->title).get());
        y += 12.0;
    }
    return y + 14.0;
}

ProfilePage profile_page_create(const ExportStep *step) {
    assert(step != nullptr && step->stack != nullptr);
    ProfilePage page = {};
    page.face = profile_face_create(step->stack);
    const f64 vertical_scale = step->vertical_scale > 0.0F ? f64{step->vertical_scale} : 1.0;
    cut_foot(&page, vertical_scale);
    choose_scale(&page, vertical_scale);
    const f64 face_height = (page.face.highest - page.face.lowest) * page.z_scale;
    const f64 top = add_heading(&page, step);
    page.base = top + std::max(face_height, LEAST_FACE_HEIGHT);
    const Owned<BorderMap> map(border_map_create(&page.face.pieces));
    border_map_connect(map.get());
    page.outline = profile_outline_create(map.get(), page.face.spacing, OUTLINE_SIMPLE);
    profile_outline_add_borders(map.get(), &page.outline);
    add_level_ruler(&page);
    if (page.face.pieces.count > 0) {
        add_upright_ruler(&page);
    }
    add_labels(&page);
    f64 y = page.base + RULER_GAP + LONG_STROKE + 3.0 * RULER_SIZE + 14.0;
    y = profile_legend_add(&page, MARGIN, y);
    y = profile_caption_add(&page, step, MARGIN, y + 10.0);
    page.height = y + MARGIN - 8.0;
    return page;
}
