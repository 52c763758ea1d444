// Tests of export/profile_outline.h, profile_borders.h and profile_areas.h: outlines worked out by hand, and
// what must hold for all: areas, and borders that two regions share point by point.
#include "export/profile_outline.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <vector>

#include "export/profile_areas.h"
#include "tests/support/film_stack.h"
#include "tests/support/test_support.h"

using Places = std::vector<std::array<f64, 2>>;  // column and height

struct Outlined {
    StationPieces pieces;
    Owned<BorderMap> map;
    ProfileOutline outline;
};

static Outlined outline_of(const FilmStack &made, const std::vector<i32> &regions,
                           OutlineKind kind = OUTLINE_SIMPLE) {
    const CutFace face = cut_face_create(&made.stack);
    Outlined result = {station_pieces_create(&face, regions.data()), nullptr, {}};
    result.map.reset(border_map_create(&result.pieces));
    border_map_connect(result.map.get());
    result.outline = profile_outline_create(result.map.get(), made.stack.spacing, kind);
    result.map->pieces = nullptr;  // they move with the record
    return result;
}

// The ring as it is, from its lowest point at its leftmost column on.
static Places ring_places(const ProfileOutline &outline, i32 ring) {
    Places places;
    for (i32 i = 0; i < outline.rings[ring].count; ++i) {
        const BorderPoint point = outline.points[outline.rings[ring].first + i];
        places.push_back({0.5 * point.station, point.height});
    }
    std::rotate(places.begin(), std::min_element(places.begin(), places.end()), places.end());
    return places;
}

static f64 region_area(const ProfileOutline &outline, i32 region) {
    f64 area = 0.0;
    for (i32 i = 0; i < outline.ring_count; ++i) {
        area += outline.rings[i].region == region ? outline.rings[i].area : 0.0;
    }
    return area;
}

static f64 pieces_area(const StationPieces &pieces, i32 region, f64 spacing) {
    f64 area = 0.0;
    for (i32 i = 0; i < pieces.count; ++i) {
        const StationPiece &piece = pieces.items[i];
        if (piece.region == region) {
            area += 0.25 * spacing * (piece.left_high - piece.left_low + piece.right_high - piece.right_low);
        }
    }
    return area;
}

TEST(ProfileOutline, ALevelSlabHasFourCorners) {
    FilmStack made(9, 2);
    made.add_columns(std::vector<FilmHeights>(9, {0.0F, 1.5F}));
    const Outlined slab = outline_of(made, {0});
    ASSERT_EQ(slab.outline.ring_count, 1);
    EXPECT_EQ(ring_places(slab.outline, 0), (Places{{0, 0}, {8, 0}, {8, 1.5}, {0, 1.5}}));
    EXPECT_EQ(slab.outline.rings[0].area, 12.0);
}

TEST(ProfileOutline, ASlopeThatIsStraightHasNoPointsBetween) {
    // From 1 at column 0 to 5 at column 4, and level to column 6.
    FilmStack made(7, 2);
    made.add_columns({{0, 1}, {0, 2}, {0, 3}, {0, 4}, {0, 5}, {0, 5}, {0, 5}});
    const Outlined slope = outline_of(made, {0});
    ASSERT_EQ(slope.outline.ring_count, 1);
    EXPECT_EQ(ring_places(slope.outline, 0), (Places{{0, 0}, {6, 0}, {6, 5}, {4, 5}, {0, 1}}));
    EXPECT_EQ(slope.outline.rings[0].area, 22.0);  // 4 x (1 + 5) / 2 + 2 x 5
}

TEST(ProfileOutline, FilmsOfOneRegionHaveNoLineBetweenThem) {
    FilmStack made(4, 2);
    made.add_columns(std::vector<FilmHeights>(4, {0.0F, 1.0F}));
    made.add_columns({{1, 2}, {1, 2}, {1, 2.5F}, {1, 2.5F}});
    const Outlined both = outline_of(made, {0, 0});
    ASSERT_EQ(both.outline.ring_count, 1);
    EXPECT_EQ(ring_places(both.outline, 0), (Places{{0, 0}, {3, 0}, {3, 2.5}, {2, 2.5}, {1, 2}, {0, 2}}));
}

// A film with a cavity of air in it: the substrate below, walls at columns 0, 1 and 5, 6, a roof above.
static void add_cavity(FilmStack *made) {
    made->add_columns(std::vector<FilmHeights>(7, {0.0F, 1.0F}));
    made->add_columns({{1, 2}, {1, 2}, {1, 1}, {1, 1}, {1, 1}, {1, 2}, {1, 2}});
    made->add_columns(std::vector<FilmHeights>(7, {2.0F, 3.0F}));
}

TEST(ProfileOutline, ACavityIsARingTheOtherWayRound) {
    FilmStack made(7, 2);
    add_cavity(&made);
    const Outlined cavity = outline_of(made, {0, 0, 0});
    ASSERT_EQ(cavity.outline.ring_count, 2);
    const bool first = cavity.outline.rings[0].area > 0.0;
    const OutlineRing &hole = cavity.outline.rings[first ? 1 : 0];
    EXPECT_EQ(ring_places(cavity.outline, first ? 0 : 1), (Places{{0, 0}, {6, 0}, {6, 3}, {0, 3}}));
    EXPECT_LT(hole.area, 0.0);
    EXPECT_EQ(hole.count, 4);
    EXPECT_EQ(cavity.outline.rings[first ? 0 : 1].area, 18.0);
    EXPECT_EQ(region_area(cavity.outline, 0), pieces_area(cavity.pieces, 0, 1.0));
}

TEST(ProfileOutline, AHoleIsCutOpenDownwards) {
    FilmStack made(7, 2);
    add_cavity(&made);
    const CutFace face = cut_face_create(&made.stack);
    const i32 regions[] = {0, 0, 0};
    const StationPieces pieces = station_pieces_create(&face, regions);
    const ProfileOutline outline = profile_outline_create_cut(&pieces, 1.0F, 8190);
    ASSERT_EQ(outline.ring_count, 1);
    // Four corners around, four of the hole, and the cut there and back: its foot, and its head once more.
    EXPECT_EQ(outline.rings[0].count, 4 + 4 + 3);
    EXPECT_EQ(outline.rings[0].area, pieces_area(pieces, 0, 1.0));
}

TEST(ProfileOutline, LongRingsAreCutIntoParts) {
    // A saw of 2,001 columns, heights 1 and 2 in turn: 2,003 corners.
    FilmStack made(2001, 2);
    made.add([](i32 n, i32) { return FilmHeights{0.0F, n % 2 == 0 ? 1.0F : 2.0F}; });
    const CutFace face = cut_face_create(&made.stack);
    const i32 regions[] = {0};
    const StationPieces pieces = station_pieces_create(&face, regions);
    const ProfileOutline outline = profile_outline_create_cut(&pieces, 1.0F, 600);
    EXPECT_GE(outline.ring_count, 4);
    f64 area = 0.0;
    for (i32 i = 0; i < outline.ring_count; ++i) {
        EXPECT_LE(outline.rings[i].count, 600);
        EXPECT_GT(outline.rings[i].area, 0.0);
        area += outline.rings[i].area;
    }
    EXPECT_DOUBLE_EQ(area, 3000.0);  // 2,000 times 1.5
}

TEST(ProfileOutline, AnEmptyFaceHasNone) {
    FilmStack made(3, 2);
    made.add_columns({{1, 1}, {1, 1}, {1, 1}});
    EXPECT_EQ(outline_of(made, {0}).outline.ring_count, 0);
}

// A random stack of films, with gaps, ends, single columns and films of no thickness; nothing is as thin as
// what counts as rounding.
static void add_random_films(TestRandom *random, FilmStack *made, i32 films) {
    std::vector<f32> surface(static_cast<size_t>(made->stack.grid_n), 0.0F);
    for (i32 film = 0; film < films; ++film) {
        std::vector<FilmHeights> heights;
        for (f32 &top : surface) {
            const f32 gap = test_random_bool(random, 0.2) ? test_random_f32(random, 0.05F, 0.5F) : 0.0F;
            const f32 levels[] = {0.0F, 0.25F, 0.5F, test_random_f32(random, 0.01F, 1.0F)};
            const f32 thickness = levels[test_random_i32(random, 0, 3)];
            const f32 bottom = thickness > 0.0F ? top + gap : top;
            heights.push_back({bottom, bottom + thickness});
            top = bottom + thickness;
        }
        made->add_columns(heights);
    }
}

// What a line of a ring is between: the regions on its two sides.
using Line = std::array<f64, 4>;

static void count_lines(const ProfileOutline &outline, std::map<Line, i32> *counts) {
    for (i32 ring = 0; ring < outline.ring_count; ++ring) {
        const Places places = ring_places(outline, ring);
        for (size_t i = 0; i < places.size(); ++i) {
            const auto &a = places[i];
            const auto &b = places[(i + 1) % places.size()];
            const bool forward = a < b;
            const Line line = forward ? Line{a[0], a[1], b[0], b[1]} : Line{b[0], b[1], a[0], a[1]};
            (*counts)[line] += forward ? 1 : 1000;
        }
    }
}

TEST(ProfileOutline, NeighboursShareTheirBordersAndAreasAreThoseOfTheHeights) {
    TestRandom random = test_random_start(20);
    for (i32 round = 0; round < 300; ++round) {
        FilmStack made(test_random_i32(&random, 2, 12), 2);
        add_random_films(&random, &made, 6);
        // With air as one more region around, every line would be there once each way.
        const std::vector<i32> regions = {0, 1, 2, 0, 1, 3};
        const Outlined random_face = outline_of(made, regions);
        std::map<Line, i32> counts;
        count_lines(random_face.outline, &counts);
        for (const auto &[line, count] : counts) {
            EXPECT_TRUE(count == 1 || count == 1000 || count == 1001) << "round " << round << ", " << count;
        }
        for (i32 region = 0; region < 4; ++region) {
            const f64 expected = pieces_area(random_face.pieces, region, 1.0);
            EXPECT_NEAR(region_area(random_face.outline, region), expected, 1e-12) << "round " << round;
        }
    }
}

TEST(ProfileOutline, EachFilmHasTheAreaOfItsHeights) {
    TestRandom random = test_random_start(23);
    for (i32 round = 0; round < 300; ++round) {
        FilmStack made(test_random_i32(&random, 2, 40), 2);
        add_random_films(&random, &made, 5);
        const Outlined apart = outline_of(made, {0, 1, 2, 3, 4});
        for (i32 film = 0; film < 5; ++film) {
            // Trapezoids between columns: those at the ends count half.
            f64 area = 0.0;
            const Layer *layer = made.layers[static_cast<size_t>(film)];
            for (i32 n = 0; n < made.stack.grid_n; ++n) {
                const f64 share = n == 0 || n + 1 == made.stack.grid_n ? 0.5 : 1.0;
                area += share * (f64{layer->top[n]} - f64{layer->bottom[n]});
            }
            EXPECT_NEAR(region_area(apart.outline, film), area, 1e-9 * (1.0 + area)) << "round " << round;
        }
    }
}

// Where lines are there once, air is on the other side: the rings of one region for everything have the same
// lines there.
TEST(ProfileOutline, BetweenRegionsThatTouchThereIsNoCrack) {
    TestRandom random = test_random_start(21);
    for (i32 round = 0; round < 300; ++round) {
        FilmStack made(test_random_i32(&random, 2, 12), 2);
        add_random_films(&random, &made, 5);
        const Outlined apart = outline_of(made, {0, 1, 2, 3, 4});
        const Outlined as_one = outline_of(made, {0, 0, 0, 0, 0});
        f64 apart_length = 0.0;
        std::map<Line, i32> counts;
        count_lines(apart.outline, &counts);
        for (const auto &[line, count] : counts) {
            apart_length += count == 1001 ? 0.0 : std::hypot(line[2] - line[0], line[3] - line[1]);
        }
        f64 length = 0.0;
        counts.clear();
        count_lines(as_one.outline, &counts);
        for (const auto &[line, count] : counts) {
            length += std::hypot(line[2] - line[0], line[3] - line[1]);
        }
        EXPECT_NEAR(apart_length, length, 1e-9) << "round " << round;
    }
}

TEST(ProfileOutline, CutRingsHaveTheAreasOfTheHeights) {
    TestRandom random = test_random_start(22);
    for (i32 round = 0; round < 300; ++round) {
        FilmStack made(test_random_i32(&random, 2, 30), 2);
        add_random_films(&random, &made, 6);
        const CutFace face = cut_face_create(&made.stack);
        const i32 regions[] = {0, 1, 0, 0, 1, 0};
        const StationPieces pieces = station_pieces_create(&face, regions);
        const ProfileOutline outline =
            profile_outline_create_cut(&pieces, 1.0F, test_random_i32(&random, 12, 60));
        for (i32 i = 0; i < outline.ring_count; ++i) {
            EXPECT_GT(outline.rings[i].area, 0.0) << "round " << round;
        }
        for (i32 region = 0; region < 2; ++region) {
            EXPECT_NEAR(region_area(outline, region), pieces_area(pieces, region, 1.0), 1e-11)
                << "round " << round;
        }
    }
}

TEST(ProfileOutline, EachBorderIsThereOnce) {
    // Two slabs on each other: one border between them, one around each with the other's air.
    FilmStack made(5, 2);
    made.add_columns(std::vector<FilmHeights>(5, {0.0F, 1.0F}));
    made.add_columns(std::vector<FilmHeights>(5, {1.0F, 2.0F}));
    Outlined slabs = outline_of(made, {0, 1});
    profile_outline_add_borders(slabs.map.get(), &slabs.outline);
    ASSERT_EQ(slabs.outline.border_count, 3);
    f64 length = 0.0;
    for (i32 i = 0; i < slabs.outline.border_count; ++i) {
        const OutlineBorder border = slabs.outline.borders[i];
        EXPECT_FALSE(border.closed);
        for (i32 k = 0; k + 1 < border.count; ++k) {
            const BorderPoint a = slabs.outline.points[border.first + k];
            const BorderPoint b = slabs.outline.points[border.first + k + 1];
            length += std::hypot(0.5 * (b.station - a.station), b.height - a.height);
        }
    }
    EXPECT_DOUBLE_EQ(length, 3 * 4.0 + 4 * 1.0);
}

TEST(ProfileAreas, WhatIsNotConnectedIsAnAreaOfItsOwn) {
    // Two blocks of one film, 3 and 5 columns wide.
    FilmStack made(12, 2);
    made.add_columns(std::vector<FilmHeights>(12, {0.0F, 1.0F}));
    made.add([](i32 n, i32) { return FilmHeights{1.0F, n < 3 || n > 6 ? 3.0F : 1.0F}; });
    const CutFace face = cut_face_create(&made.stack);
    const i32 regions[] = {0, 1};
    const StationPieces pieces = station_pieces_create(&face, regions);
    const ProfileAreas areas = profile_areas_create(&pieces);
    ASSERT_EQ(areas.count, 3);
    EXPECT_EQ(areas.items[0].region, 0);
    EXPECT_EQ(areas.items[1].region, 1);
    EXPECT_EQ(areas.items[2].region, 1);
    EXPECT_DOUBLE_EQ(areas.items[0].size, 22.0);
}

TEST(ProfileAreas, ABoxFindsItsPlaceOrNone) {
    // 1 high at columns 0 to 6, 4 high at columns 6 to 10.
    FilmStack made(11, 2);
    made.add([](i32 n, i32) { return FilmHeights{0.0F, n < 6 ? 1.0F : 4.0F}; });
    const CutFace face = cut_face_create(&made.stack);
    const i32 regions[] = {0};
    const StationPieces pieces = station_pieces_create(&face, regions);
    const ProfileAreas areas = profile_areas_create(&pieces);
    AreaPlace place = {};
    ASSERT_TRUE(profile_area_find_room(&areas, 0, 4, 2.0, &place));
    EXPECT_GE(place.station - 2.0, 12.0);
    EXPECT_LE(place.station + 2.0, 20.0);
    EXPECT_DOUBLE_EQ(place.height, 2.0);
    EXPECT_FALSE(profile_area_find_room(&areas, 0, 10, 2.0, &place));
    EXPECT_TRUE(profile_area_find_room(&areas, 0, 20, 1.0, &place));
    EXPECT_FALSE(profile_area_find_room(&areas, 0, 21, 0.5, &place));
}
