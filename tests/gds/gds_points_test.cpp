// Points taken from records, with the plain form: byte by byte, number by number.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "gds/gds_points.h"
#include "tests/gds/gds_bytes.h"
#include "tests/support/test_support.h"

static Box plain_box(const std::vector<Point> &points) {
    Box box = {I32_MAX, I32_MAX, I32_MIN, I32_MIN};
    for (const Point &point : points) {
        box = {std::min(box.x_min, point.x), std::min(box.y_min, point.y), std::max(box.x_max, point.x),
               std::max(box.y_max, point.y)};
    }
    return box;
}

// The bytes and the points lie in blocks of exactly their size, and at odd addresses.
static void check(const std::vector<Point> &points) {
    std::string bytes = "!";
    for (const Point &point : points) {
        bytes += bytes_i32(point.x) + bytes_i32(point.y);
    }
    const auto exact = memory_scratch<u8>(static_cast<i64>(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), exact.get());
    const auto count = static_cast<i32>(points.size());
    const auto taken = memory_scratch<Point>(count);
    EXPECT_EQ(gds_points_take(exact.get() + 1, count, taken.get()), plain_box(points)) << count << " points";
    EXPECT_EQ(std::vector<Point>(taken.get(), taken.get() + count), points);
    EXPECT_EQ(gds_points_box(taken.get(), count), plain_box(points)) << count << " points";
}

TEST(GdsPoints, EqualThePlainForm) {
    TestRandom random = test_random_start(31);
    for (i32 run = 0; run < 4000; ++run) {
        const i32 shift = test_random_i32(&random, 0, 31);
        std::vector<Point> points(static_cast<size_t>(test_random_i32(&random, 0, 12)));
        for (Point &point : points) {
            point = {static_cast<i32>(test_random_u32(&random)) >> shift,
                     static_cast<i32>(test_random_u32(&random)) >> shift};
        }
        check(points);
    }
}

TEST(GdsPoints, TheEndsOfTheRange) {
    check({{I32_MIN, I32_MAX}, {I32_MAX, I32_MIN}});
    check({{I32_MIN, I32_MIN}});
    check({{-1, 1}, {I32_MAX, I32_MAX}, {0, 0}});
    check(std::vector<Point>(8191, Point{-7, 9}));
}

TEST(GdsPoints, AnyOfThePointsMakesTheBox) {
    for (size_t count = 1; count < 10; ++count) {
        for (size_t at = 0; at < count; ++at) {
            std::vector<Point> points(count, Point{0, 0});
            points[at] = {-5, 6};
            check(points);
        }
    }
}
