#include "sim/kernels/mask.h"
#include <cmath>
#include <limits>
#include "support.h"

// Polygons whose points live in vectors.
struct MaskPolygons {
    std::vector<std::vector<FlatPoint>> points;
    std::vector<FlatPolygon> items;

    void add(std::vector<FlatPoint> corners, u16 layer = 1) {
        FlatPolygon polygon = {};
        polygon.point_count = static_cast<i32>(corners.size());
        polygon.layer = layer;
        polygon.x_min = polygon.y_min = F32_MAX;
        polygon.x_max = polygon.y_max = -F32_MAX;
        for (const FlatPoint &point : corners) {
            polygon.x_min = std::fmin(polygon.x_min, point.x);
            polygon.y_min = std::fmin(polygon.y_min, point.y);
            polygon.x_max = std::fmax(polygon.x_max, point.x);
            polygon.y_max = std::fmax(polygon.y_max, point.y);
        }
        points.push_back(std::move(corners));
        items.push_back(polygon);
    }
    // Gives the polygon added last a datatype.
    void set_datatype(u16 datatype) { items.back().datatype = datatype; }
    void add_box(f32 x_min, f32 y_min, f32 x_max, f32 y_max, u16 layer = 1) {
        add({{x_min, y_min}, {x_max, y_min}, {x_max, y_max}, {x_min, y_max}, {x_min, y_min}}, layer);
    }
    PolygonList list() {
        for (size_t i = 0; i < items.size(); ++i) {
            items[i].points = points[i].data();
        }
        PolygonList all = {};
        all.items = items.data();
        all.count = static_cast<i32>(items.size());
        return all;
    }
};

static std::string draw(MaskPolygons *polygons, i32 n, i32 m, f32 spacing, u32 id, u32 type, f32 *critical) {
    std::vector<u8> mask(point_count(n, m), 9);
    const PolygonList list = polygons->list();
    *critical = mask_rasterize(&list, mask.data(), n, m, spacing, {id, EVERY_DATATYPE}, type);
    std::string text;
    for (const u8 value : mask) {
        text += static_cast<char>('0' + value);
    }
    return text;
}

// Five points in a row at 0 to 4. Layer 1 has the points 0 and 1 as datatype 20 and 3 as datatype 44; layer 2
// has all as 44.
TEST(MaskRasterize, ADatatypeCountsAlone) {
    MaskPolygons polygons;
    polygons.add_box(0.0F, 0.0F, 2.0F, 1.0F, 1);
    polygons.set_datatype(20);
    polygons.add_box(3.0F, 0.0F, 4.0F, 3.0F, 1);
    polygons.set_datatype(44);
    polygons.add_box(0.0F, 0.0F, 5.0F, 0.5F, 2);
    polygons.set_datatype(44);
    const PolygonList list = polygons.list();
    struct Case {
        MaskLayer layer;
        const char *dark;
        f32 critical;
    };
    const Case cases[] = {
        {{1, EVERY_DATATYPE}, "11010", 1.0F},
        {{1, 20}, "11000", 1.0F},
        {{1, 44}, "00010", 1.0F},
        {{1, 0}, "00000", 3.4028235e38F},
        {{2, 44}, "00000", 0.5F},  // ends below the row's own box,
                                   // whose floor is 0
        {{2, 20}, "00000", 3.4028235e38F},
    };
    for (const Case &c : cases) {
        std::vector<u8> mask(5);
        const f32 critical = mask_rasterize(&list, mask.data(), 5, 1, 1.0F, c.layer, 1);
        std::string text;
        for (const u8 value : mask) {
            text += static_cast<char>('0' + value);
        }
        EXPECT_EQ(text, c.dark) << c.layer.layer << "/" << c.layer.datatype;
        EXPECT_EQ(critical, c.critical) << c.layer.layer << "/" << c.layer.datatype;
    }
}

TEST(MaskRasterize, WithoutPolygonsTheBackgroundIsTheOppositeOfTheType) {
    MaskPolygons polygons;
    polygons.add_box(0.0F, 0.0F, 3.0F, 3.0F, 2);
    f32 critical = 0.0F;
    EXPECT_EQ(draw(&polygons, 3, 1, 1.0F, 1, 0, &critical), "111") << "clear type: resist everywhere";
    EXPECT_EQ(critical, 3.4028235e38F);
    EXPECT_EQ(draw(&polygons, 3, 1, 1.0F, 1, 1, &critical), "000") << "dark type: resist nowhere";
    EXPECT_EQ(critical, 3.4028235e38F);
}

TEST(MaskRasterize, DarkSquareKeepsAndClearSquareOpens) {
    // Columns floor(1.5) = 1 up to, not including, floor(4.5) = 4, of which 1 lies left of the square.
    MaskPolygons polygons;
    polygons.add_box(1.5F, 0.5F, 4.5F, 2.5F);
    f32 critical = 0.0F;
    EXPECT_EQ(draw(&polygons, 6, 4, 1.0F, 1, 1, &critical), "000000001100000000000000");
    EXPECT_EQ(draw(&polygons, 6, 4, 1.0F, 1, 0, &critical), "111111110011111111111111");
    EXPECT_EQ(critical, 2.0F) << "the smaller side";
}

TEST(MaskRasterize, LeftAndLowerSidesBelongToThePolygon) {
    // Points on x = 1 are inside (x < crossing fails only on the right side), those on x = 3 are not.
    MaskPolygons polygons;
    polygons.add_box(1.0F, 1.0F, 3.0F, 3.0F);
    f32 critical = 0.0F;
    EXPECT_EQ(draw(&polygons, 5, 5, 1.0F, 1, 1, &critical), "0000001100011000000000000");
}

TEST(MaskRasterize, CriticalDimensionIsTheSmallestSideOfAllBoxes) {
    MaskPolygons polygons;
    polygons.add_box(0.0F, 0.0F, 5.0F, 3.0F);
    polygons.add_box(0.0F, 0.0F, 0.25F, 9.0F);
    polygons.add_box(0.0F, 0.0F, 0.125F, 9.0F, 7);
    f32 critical = 0.0F;
    draw(&polygons, 4, 4, 1.0F, 1, 1, &critical);
    EXPECT_EQ(critical, 0.25F);
}

TEST(MaskRasterize, PolygonsBeyondTheMaskAreCut) {
    MaskPolygons polygons;
    polygons.add_box(-5.0F, -5.0F, 50.0F, 50.0F);
    f32 critical = 0.0F;
    EXPECT_EQ(draw(&polygons, 3, 2, 1.0F, 1, 1, &critical), "111111");
    polygons = {};
    polygons.add_box(-9.0F, -9.0F, -4.0F, -4.0F);
    polygons.add_box(40.0F, 40.0F, 50.0F, 50.0F);
    polygons.add_box(1e30F, 0.0F, 2e30F, 2.0F);
    polygons.add_box(-1e30F, -1e30F, -1e29F, 2.0F);
    EXPECT_EQ(draw(&polygons, 3, 2, 1.0F, 1, 1, &critical), "000000");
}

TEST(MaskRasterize, OddNumbersAreSafe) {
    const f32 nan = std::numeric_limits<f32>::quiet_NaN();
    const f32 inf = std::numeric_limits<f32>::infinity();
    MaskPolygons polygons;
    polygons.add_box(nan, nan, nan, nan);
    polygons.add_box(-inf, -inf, inf, inf);
    polygons.add({});
    polygons.add({{0.0F, nan}, {2.0F, 3.0F}, {inf, 0.0F}});
    f32 critical = 0.0F;
    for (const f32 spacing : {1.0F, 0.0F, -1.0F, nan, inf, 1e-38F, 1e38F}) {
        EXPECT_EQ(draw(&polygons, 4, 4, spacing, 1, 1, &critical).size(), 16U);
    }
}

TEST(PolygonContains, EvenOdd) {
    MaskPolygons polygons;
    // A frame: an outer square and, joined to it, an inner one, in one line of points.
    polygons.add({{0, 0}, {6, 0}, {6, 6}, {0, 6}, {0, 0}, {2, 2}, {2, 4}, {4, 4}, {4, 2}, {2, 2}});
    polygons.add({});
    polygons.list();
    EXPECT_TRUE(polygon_contains(&polygons.items[0], 1.0F, 3.0F));
    EXPECT_FALSE(polygon_contains(&polygons.items[0], 3.0F, 3.0F)) << "the hole";
    EXPECT_TRUE(polygon_contains(&polygons.items[0], 5.0F, 3.0F));
    EXPECT_FALSE(polygon_contains(&polygons.items[0], 7.0F, 3.0F));
    EXPECT_FALSE(polygon_contains(&polygons.items[1], 0.0F, 0.0F)) << "no points";
}

TEST(MaskRasterize, EqualsTheTestOfEveryPoint) {
    RandomBits random(21);
    const auto coordinate = [&](u32 steps, f32 size) {
        return (static_cast<f32>(random() % steps) / static_cast<f32>(steps) * 1.4F - 0.2F) * size;
    };
    for (i32 round = 0; round < 300; ++round) {
        const i32 n = 1 + static_cast<i32>(random() % 40U);
        const i32 m = 1 + static_cast<i32>(random() % 30U);
        const f32 spacing = round % 3 == 0 ? 7.3F / 333.0F : (round % 3 == 1 ? 0.1F : 1.0F);
        // Coarse coordinates lie on grid points again and again.
        const u32 steps = round % 2 == 0 ? 14U : 100000U;
        MaskPolygons polygons;
        for (i32 k = 0; k < 4; ++k) {
            std::vector<FlatPoint> corners(random() % 12U);
            for (FlatPoint &corner : corners) {
                corner = {coordinate(steps, static_cast<f32>(n) * spacing),
                          coordinate(steps, static_cast<f32>(m) * spacing)};
            }
            polygons.add(corners, static_cast<u16>(1 + k % 2));
            polygons.set_datatype(static_cast<u16>(k / 2));
        }
        const PolygonList list = polygons.list();
        const u32 type = random() % 2U;
        std::vector<u8> got(point_count(n, m));
        std::vector<u8> expected(got.size());
        const MaskLayer layer = {1, static_cast<i32>(random() % 3U) - 1};  // every datatype, 0 or 1
        const f32 side = mask_rasterize(&list, got.data(), n, m, spacing, layer, type);
        const f32 expected_side = reference::rasterize(&list, expected.data(), n, m, spacing, layer, type);
        EXPECT_EQ(got, expected) << "round " << round;
        EXPECT_EQ(side, expected_side) << "round " << round;
        for (i32 i = 0; i < 20 && list.items[0].point_count > 0; ++i) {
            const f32 x = coordinate(steps, static_cast<f32>(n) * spacing);
            const f32 y = coordinate(steps, static_cast<f32>(m) * spacing);
            EXPECT_EQ(polygon_contains(&list.items[0], x, y), reference::contains(&list.items[0], x, y));
        }
    }
}
