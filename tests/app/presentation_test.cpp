// Where a picture lies in the render area. The scale is a single-precision quotient and the scaled size is
// truncated, so most expected figures are exact by hand.
#include "app/presentation.h"

#include <gtest/gtest.h>

#include "app/window_texts.h"
#include "image/pixel_image.h"
#include "tests/support/test_support.h"

struct PlaceCase {
    const char *name;
    i32 image_width, image_height, area_width, area_height;
    i32 x, y, width, height;
};

static const PlaceCase PLACE_CASES[] = {
    {"exactly the area", 1200, 456, 1200, 456, 0, 0, 1200, 456},
    // Scale 0.5; the height 500 of 600 leaves 100, half of it below.
    {"wider than the area: centred vertically", 2000, 1000, 1000, 600, 0, 50, 1000, 500},
    // The scale by width, 1, would give 1000 rows; 0.5 by height leaves 600 columns of 1000.
    {"taller than the area: centred horizontally", 800, 1000, 800, 500, 200, 0, 400, 500},
    // Scale 4; small pictures are enlarged.
    {"smaller than the area", 100, 50, 400, 300, 0, 50, 400, 200},
    // 101 left over: the smaller half lies on the left.
    {"an odd rest", 300, 100, 401, 100, 50, 0, 300, 100},
    // Scale 0.25: three rows become 0.75, none at all.
    {"a picture too flat to show", 4000, 3, 1000, 10, 0, 5, 1000, 0},
    {"an area without width", 100, 50, 0, 300, 0, 150, 0, 0},
};

TEST(PicturePlace, IsAsLargeAsFitsAndCentred) {
    for (const PlaceCase &c : PLACE_CASES) {
        const PicturePlace place = picture_place(c.image_width, c.image_height, c.area_width, c.area_height);
        EXPECT_EQ(place.x, c.x) << c.name;
        EXPECT_EQ(place.y, c.y) << c.name;
        EXPECT_EQ(place.width, c.width) << c.name;
        EXPECT_EQ(place.height, c.height) << c.name;
    }
}

// A scaled picture is drawn with the size of its place: both must come out of the same arithmetic.
TEST(PicturePlace, HasTheSizeOfTheScaledPicture) {
    TestRandom random = test_random_start(41);
    for (i32 i = 0; i < 200; ++i) {
        const i32 width = test_random_i32(&random, 1, 300);
        const i32 height = test_random_i32(&random, 1, 300);
        const PicturePlace place =
            picture_place(width, height, test_random_i32(&random, 1, 400), test_random_i32(&random, 1, 400));
        const Owned<PixelImage> image(image_create(width, height, L""));
        const Owned<PixelImage> scaled(image_scale(image.get(), place.scale));
        EXPECT_EQ(scaled->width, place.width) << width << " x " << height;
        EXPECT_EQ(scaled->height, place.height) << width << " x " << height;
    }
}

// 0.6 in single precision is a little above six tenths, and products are rounded before they are cut.
TEST(RenderAreaHeight, IsSixTenthsTruncated) {
    EXPECT_EQ(render_area_height(0), 0);
    EXPECT_EQ(render_area_height(1), 0);
    EXPECT_EQ(render_area_height(2), 1);
    EXPECT_EQ(render_area_height(10), 6);
    EXPECT_EQ(render_area_height(751), 450);
    EXPECT_EQ(render_area_height(800), 480);
}

TEST(WindowTexts, StatusFieldsFillTheWindow) {
    i32 left = 0;
    for (const StatusField &field : STATUS_FIELDS) {
        EXPECT_LT(left, field.right_edge);
        left = field.right_edge;
    }
    EXPECT_EQ(left, WINDOW_WIDTH);
}

TEST(WindowTexts, AboutNamesTheVersion) {
    const Owned<NString> caption(about_caption());
    EXPECT_STREQ(nstring_text(caption.get()), "Quarn 3.0.0");
}
