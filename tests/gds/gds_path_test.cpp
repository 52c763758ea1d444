#include <gtest/gtest.h>

#include <vector>

#include "gds/gds_path.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_twin.h"
#include "tests/support/test_support.h"

struct PathCase {
    const char *name;
    std::vector<Point> points;
    u32 width;
    u16 type;
    std::vector<Point> outline;  // empty: the path fails
};

static void check(const PathCase &path) {
    SCOPED_TRACE(path.name);
    const i32 count = static_cast<i32>(path.points.size());
    std::vector<Point> out(path.points.size() * 2 + 1);
    const i32 result = path_to_polygon(out.data(), path.points.data(), count, path.width, path.type);
    EXPECT_EQ(result, path.outline.empty() ? 0 : 1);
    if (result == 1) {
        EXPECT_EQ(out, path.outline);
    }
}

// A segment along +x has a = 0, b = -dx; with c + L h the line -dx y + dx h = 0 lies at y = h: side A is
// to the left of the way. The outline goes forwards on side A and back on side B.
TEST(PathToPolygon, EndsAndCorners) {
    const PathCase cases[] = {
        {"flush", {{0, 0}, {100, 0}}, 20, 0, {{0, 10}, {100, 10}, {100, -10}, {0, -10}, {0, 10}}},
        {"extended", {{0, 0}, {100, 0}}, 20, 2, {{-10, 10}, {110, 10}, {110, -10}, {-10, -10}, {-10, 10}}},
        {"round ends left flush", {{0, 0}, {0, 50}}, 4, 1, {{-2, 0}, {-2, 50}, {2, 50}, {2, 0}, {-2, 0}}},
        {"unknown type flush", {{0, 0}, {0, 50}}, 4, 9, {{-2, 0}, {-2, 50}, {2, 50}, {2, 0}, {-2, 0}}},
        {"no width", {{0, 0}, {10, 0}}, 0, 0, {{0, 0}, {10, 0}, {10, 0}, {0, 0}, {0, 0}}},
        {"odd width truncates toward zero",
         {{0, 0}, {10, 0}},
         5,
         0,
         {{0, 2}, {10, 2}, {10, -2}, {0, -2}, {0, 2}}},
        {"right angle",
         {{0, 0}, {100, 0}, {100, 100}},
         20,
         0,
         {{0, 10}, {90, 10}, {90, 100}, {110, 100}, {110, -10}, {0, -10}, {0, 10}}},
    };
    for (const PathCase &path : cases) {
        check(path);
    }
}

TEST(PathToPolygon, Failures) {
    const PathCase cases[] = {
        {"no point", {}, 10, 0, {}},
        {"one point", {{1, 1}}, 10, 0, {}},
        {"equal points", {{1, 1}, {1, 1}}, 10, 0, {}},
        {"equal points later", {{0, 0}, {1, 1}, {1, 1}}, 10, 0, {}},
        {"collinear", {{0, 0}, {10, 0}, {20, 0}}, 10, 0, {}},
        {"turning back", {{0, 0}, {10, 0}, {5, 0}}, 10, 0, {}},
        {"type 2, first x equals both of the second", {{5, 0}, {5, 5}}, 10, 2, {}},
        {"type 2, last x equals both of the one before", {{0, 0}, {7, 7}, {7, 9}}, 10, 2, {}},
    };
    for (const PathCase &path : cases) {
        check(path);
    }
    // Flush ends take the same points.
    check({"type 0", {{5, 0}, {5, 5}}, 10, 0, {{0, 0}, {0, 5}, {10, 5}, {10, 0}, {0, 0}}});
}

TEST(PathToPolygon, NegativeWidthBecomesVeryLarge) {
    // -2 as unsigned is 4294967294, half of it 2147483647: the outline reaches to the ends of i32.
    check({"negative",
           {{0, 0}, {10, 0}},
           static_cast<u32>(-2),
           0,
           {{0, I32_MAX}, {10, I32_MAX}, {10, -I32_MAX}, {0, -I32_MAX}, {0, I32_MAX}}});
    // Half of -1 as unsigned is 2147483647.5; one unit up, 2147483648.5 does not fit.
    check({"past the end",
           {{0, 1}, {10, 1}},
           static_cast<u32>(-1),
           0,
           {{0, I32_MIN}, {10, I32_MIN}, {10, -2147483646}, {0, -2147483646}, {0, I32_MIN}}});
}

TEST(PathToPolygon, PointsAtTheEndsOfTheRange) {
    std::vector<Point> out(7);
    const Point points[] = {{I32_MIN, I32_MIN}, {I32_MAX, I32_MIN}, {I32_MAX, I32_MAX}};
    EXPECT_EQ(path_to_polygon(out.data(), points, 3, 2, 2), 1);
    EXPECT_EQ(out[6], out[0]);
}

// Of all sizes, up to outlines that do not fit into 32 bits.
TEST(PathToPolygon, EqualsThePlainForm) {
    TestRandom random = test_random_start(77);
    i32 made = 0;
    for (i32 run = 0; run < 20000; ++run) {
        const i32 reach = i32{1} << test_random_i32(&random, 2, 30);
        const i32 count = test_random_i32(&random, 2, 6);
        std::vector<Point> points;
        for (i32 i = 0; i < count; ++i) {
            points.push_back(
                {test_random_i32(&random, -reach, reach), test_random_i32(&random, -reach, reach)});
        }
        const u32 width = test_random_u32(&random) >> test_random_i32(&random, 0, 31);
        const u16 type = static_cast<u16>(test_random_i32(&random, 0, 2));
        std::vector<Point> out(points.size() * 2 + 1);
        std::vector<Point> expected(out.size());
        const i32 result = path_to_polygon(out.data(), points.data(), count, width, type);
        ASSERT_EQ(result, twin_path(expected.data(), points.data(), count, width, type)) << "path " << run;
        if (result == 1) {
            ++made;
            ASSERT_EQ(out, expected) << "path " << run;
        }
    }
    EXPECT_GT(made, 15000);
}

TEST(PointExtend, MovesAwayAndTruncates) {
    EXPECT_EQ(point_extend({10, 0}, {0, 0}, 5.0), (Point{15, 0}));
    EXPECT_EQ(point_extend({3, 4}, {0, 0}, 5.0), (Point{6, 8}));
    EXPECT_EQ(point_extend({0, 0}, {3, 4}, 4.0), (Point{-2, -3}));  // -2.4, -3.2
    EXPECT_EQ(point_extend({7, 7}, {7, 7}, 5.0), (Point{7, 7}));
    EXPECT_EQ(point_extend({I32_MAX, 0}, {0, 0}, 1.0), (Point{I32_MIN, 0}));
}
