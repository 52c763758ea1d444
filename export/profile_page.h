// profile_page.h: what stands where in the drawing of a cut face: the face with rulers at its left and below
// it, the heading above, the legend and the facts below. Points; x to the right, y down.
#pragma once
#include "export/profile_face.h"
#include "export/profile_outline.h"
#include "export/profile_text.h"

// All drawings are as wide; their height follows from what is drawn.
inline constexpr f64 PAGE_WIDTH = 1200.0;

struct PageLine {
    f64 x0, y0, x1, y1;
};

struct PageBox {
    f64 x, y, width, height;
    i32 material;  // an index of the face's materials
};

struct PageLines {
    Owned<PageLine[]> items;
    i32 count, capacity;
};

struct PageBoxes {
    Owned<PageBox[]> items;
    i32 count, capacity;
};

struct ProfilePage {
    f64 height;
    f64 left, base;        // where the first column and the lowest height are
    f64 x_scale, z_scale;  // points a micrometre
    ProfileFace face;      // its foot is cut off where heights are stretched
    bool is_cut;
    f64 structure;  // heights above the lowest place of the substrate's surface, micrometres
    ProfileOutline outline;
    PageLines strokes;   // of the rulers
    PageBoxes swatches;  // of the legend, outlined
    PageBoxes plates;    // of one colour beneath the names within areas
    DrawnTexts texts;
};

struct PageColor {
    f64 red, green, blue;
};

// Lays the page of a step out. The texts of its stack must outlive it.
ProfilePage profile_page_create(const ExportStep *step);

// Where a place of the face is.
f64 profile_page_x(const ProfilePage *page, f64 station);
f64 profile_page_y(const ProfilePage *page, f64 height);

// How a material looks on white paper, and how bright that is: 0 black to 1 white.
PageColor material_on_white(const NumberedMaterial *material);
f64 color_brightness(PageColor color);
