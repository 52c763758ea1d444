#include "sim/cut_face.h"

#include <algorithm>
#include <cmath>
#include <random>
#include "tests/support/film_stack.h"

static const FilmHeights GROUND = {0.0F, 1.0F};

static void expect_piece(const CutFace &face, i32 index, const CutPiece &expected) {
    ASSERT_LT(index, face.piece_count);
    const CutPiece piece = face.pieces[index];
    EXPECT_EQ(piece.film, expected.film) << "piece " << index;
    EXPECT_EQ(piece.left, expected.left) << "piece " << index;
    EXPECT_EQ(piece.right, expected.right) << "piece " << index;
    EXPECT_EQ(piece.left_low, expected.left_low) << "piece " << index;
    EXPECT_EQ(piece.left_high, expected.left_high) << "piece " << index;
    EXPECT_EQ(piece.right_low, expected.right_low) << "piece " << index;
    EXPECT_EQ(piece.right_high, expected.right_high) << "piece " << index;
}

// The pieces, from the left to the right and upwards.
static void expect_pieces(const FilmStack &made, const std::vector<CutPiece> &expected) {
    const CutFace face = cut_face_create(&made.stack);
    ASSERT_EQ(face.piece_count, static_cast<i32>(expected.size()));
    for (i32 i = 0; i < face.piece_count; ++i) {
        expect_piece(face, i, expected[static_cast<size_t>(i)]);
    }
}

TEST(CutFaceDivide, FilmsThatAreThereAtBothColumnsAreJoined) {
    FilmStack made(2, 2);
    made.add_columns({{0.0F, 1.0F}, {0.0F, 2.0F}});
    made.add_columns({{1.0F, 4.0F}, {2.0F, 3.0F}});
    expect_pieces(made, {{0, 0, 1, 0, 1, 0, 2}, {1, 0, 1, 1, 4, 2, 3}});
}

TEST(CutFaceDivide, InTheOpenAFilmEndsStraight) {
    FilmStack made(3, 2);
    made.add_columns({GROUND, GROUND, GROUND});
    made.add_columns({{1.0F, 1.0F}, {1.0F, 2.0F}, {1.5F, 1.5F}});
    expect_pieces(made, {{0, 0, 0.5F, 0, 1, 0, 1},
                         {0, 0.5F, 1, 0, 1, 0, 1},
                         {1, 0.5F, 1, 1, 2, 1, 2},
                         {0, 1, 1.5F, 0, 1, 0, 1},
                         {1, 1, 1.5F, 1, 2, 1, 2},
                         {0, 1.5F, 2, 0, 1, 0, 1}});
}

TEST(CutFaceDivide, InTheOpenTheGroundEndsWithTheFilmsOnIt) {
    // The ground goes up from 1 to 1.5, and films of 1 and 2 on it end beside one of 0.5.
    FilmStack made(2, 2);
    made.add_columns({GROUND, {0.0F, 1.5F}});
    made.add_columns({{1.0F, 2.0F}, {1.5F, 1.5F}});
    made.add_columns({{2.0F, 4.0F}, {1.5F, 1.5F}});
    made.add_columns({{4.0F, 4.0F}, {1.5F, 2.0F}});
    expect_pieces(made, {{0, 0, 0.5F, 0, 1, 0, 1},
                         {1, 0, 0.5F, 1, 2, 1, 2},
                         {2, 0, 0.5F, 2, 4, 2, 4},
                         {0, 0.5F, 1, 0, 1.5, 0, 1.5},
                         {3, 0.5F, 1, 1.5, 2, 1.5, 2}});
}

TEST(CutFaceDivide, AFilmTooThinForAStepTakesWhatItLiesOnAlong) {
    // A skin of 0.5 on a ground that goes up from 1 to 4: half-way it would be from 2.5 to 3.
    FilmStack made(2, 2);
    made.add_columns({GROUND, {0.0F, 4.0F}});
    made.add_columns({{1.0F, 1.5F}, {4.0F, 4.5F}});
    made.add_columns({{1.5F, 2.0F}, {4.5F, 4.5F}});
    expect_pieces(made, {{0, 0, 0.5F, 0, 1, 0, 1},
                         {1, 0, 0.5F, 1, 1.5, 1, 1.5},
                         {2, 0, 0.5F, 1.5, 2, 1.5, 2},
                         {0, 0.5F, 1, 0, 4, 0, 4},
                         {1, 0.5F, 1, 4, 4.5, 4, 4.5}});
}

TEST(CutFaceDivide, OverAnEndBelowAFilmRunsOut) {
    // The same with a film that ends beneath the skin, which is torn by neither.
    FilmStack made(2, 2);
    made.add_columns({GROUND, GROUND});
    made.add_columns({{1.0F, 1.0F}, {1.0F, 4.0F}});
    made.add_columns({{1.0F, 1.5F}, {4.0F, 4.5F}});
    made.add_columns({{1.5F, 2.0F}, {4.5F, 4.5F}});
    expect_pieces(made, {{0, 0, 1, 0, 1, 0, 1},
                         {1, 0, 1, 1, 1, 1, 4},
                         {2, 0, 1, 1, 1.5, 4, 4.5},
                         {3, 0, 1, 1.5, 2, 4.5, 4.5}});
}

TEST(CutFaceDivide, AFilmThatFillsAHoleToItsBrimEndsAtItsWall) {
    // A metal from 1 to 3 in a hole of the ground, whose top is at 3 beside it: the ground is the wall.
    FilmStack made(2, 2);
    made.add_columns({GROUND, {0.0F, 3.0F}});
    made.add_columns({{1.0F, 3.0F}, {3.0F, 3.0F}});
    expect_pieces(made, {{0, 0, 0.5F, 0, 1, 0, 1}, {1, 0, 0.5F, 1, 3, 1, 3}, {0, 0.5F, 1, 0, 3, 0, 3}});
}

TEST(CutFaceDivide, AgainstOtherFilmsAFilmIsCutStraight) {
    // Two films from 1 to 2 and 2 to 3 end where a plug from 1 to 3 begins, under a cover that is everywhere.
    FilmStack made(2, 2);
    made.add_columns({GROUND, GROUND});
    made.add_columns({{1.0F, 2.0F}, {1.6F, 1.6F}});
    made.add_columns({{2.0F, 3.0F}, {2.6F, 2.6F}});
    made.add_columns({{3.0F, 3.0F}, {1.0F, 3.0F}});
    made.add_columns({{3.0F, 4.0F}, {3.0F, 5.0F}});
    expect_pieces(made, {{0, 0, 0.5F, 0, 1, 0, 1},
                         {1, 0, 0.5F, 1, 2, 1, 2},
                         {2, 0, 0.5F, 2, 3, 2, 3},
                         {4, 0, 0.5F, 3, 4, 3, 4.5},
                         {0, 0.5F, 1, 0, 1, 0, 1},
                         {3, 0.5F, 1, 1, 3, 1, 3},
                         {4, 0.5F, 1, 3, 4.5, 3, 5}});
}

TEST(CutFaceDivide, AFilmThatEndsUnderACoverMakesAStepInIt) {
    // The film from 1 to 2 ends half-way, and so does the step of the cover, whose top goes from 4 to 3.
    FilmStack made(2, 2);
    made.add_columns({GROUND, GROUND});
    made.add_columns({{1.0F, 2.0F}, {1.0F, 1.0F}});
    made.add_columns({{2.0F, 4.0F}, {1.0F, 3.0F}});
    expect_pieces(made, {{0, 0, 0.5F, 0, 1, 0, 1},
                         {1, 0, 0.5F, 1, 2, 1, 2},
                         {2, 0, 0.5F, 2, 4, 2, 3.5},
                         {0, 0.5F, 1, 0, 1, 0, 1},
                         {2, 0.5F, 1, 1, 3.5, 1, 3}});
}

TEST(CutFaceDivide, FilmsRideOnTheBorderThatRisesLess) {
    // The ground goes up from 1 to 2.5, the underside of the cover from 2 to 2.5: that of the cover is the
    // straight one, at 2.25 half-way, and the film of 1 at the left is a film of 1 as far as that. At the
    // right nothing is between ground and cover.
    FilmStack made(2, 2);
    made.add_columns({GROUND, {0.0F, 2.5F}});
    made.add_columns({{1.0F, 2.0F}, {2.5F, 2.5F}});
    made.add_columns({{2.0F, 3.0F}, {2.5F, 3.0F}});
    expect_pieces(made, {{0, 0, 0.5F, 0, 1, 0, 1.25},
                         {1, 0, 0.5F, 1, 2, 1.25, 2.25},
                         {2, 0, 0.5F, 2, 3, 2.25, 3},
                         {0, 0.5F, 1, 0, 2.25, 0, 2.5},
                         {2, 0.5F, 1, 2.25, 3, 2.5, 3}});
}

TEST(CutFaceDivide, BesideAFilledHoleFilmsEndStraight) {
    // A lining from 1 to 3 at the bottom of a hole lies on two films, from 1 to 1.5 and from 1.5 to 2.5, at
    // the next column: its underside is the wall.
    FilmStack hole(2, 2);
    hole.add_columns({GROUND, GROUND});
    hole.add_columns({{1.0F, 1.0F}, {1.0F, 1.5F}});
    hole.add_columns({{1.0F, 1.0F}, {1.5F, 2.5F}});
    hole.add_columns({{1.0F, 3.0F}, {2.5F, 3.0F}});
    expect_pieces(hole, {{0, 0, 0.5F, 0, 1, 0, 1},
                         {3, 0, 0.5F, 1, 3, 1, 3},
                         {0, 0.5F, 1, 0, 1, 0, 1},
                         {1, 0.5F, 1, 1, 1.5, 1, 1.5},
                         {2, 0.5F, 1, 1.5, 2.5, 1.5, 2.5},
                         {3, 0.5F, 1, 2.5, 3, 2.5, 3}});

    // A mesa of the ground from 0 to 3 beside two films that fill up to its height, under a flat cover: the
    // mesa is the wall.
    FilmStack mesa(2, 2);
    mesa.add_columns({GROUND, {0.0F, 3.0F}});
    mesa.add_columns({{1.0F, 2.0F}, {3.0F, 3.0F}});
    mesa.add_columns({{2.0F, 3.0F}, {3.0F, 3.0F}});
    mesa.add_columns({{3.0F, 4.0F}, {3.0F, 4.0F}});
    expect_pieces(mesa, {{0, 0, 0.5F, 0, 1, 0, 1},
                         {1, 0, 0.5F, 1, 2, 1, 2},
                         {2, 0, 0.5F, 2, 3, 2, 3},
                         {3, 0, 0.5F, 3, 4, 3, 4},
                         {0, 0.5F, 1, 0, 3, 0, 3},
                         {3, 0.5F, 1, 3, 4, 3, 4}});
}

TEST(CutFaceDivide, ACoverTooThinForAStepGoesStraightAndFilmsRunOut) {
    // The cover of 0.5 goes up from 1 to 4, the film under it has no room for a straight edge of 3 at half
    // the way, and beneath it there is nothing but the bottom.
    FilmStack made(2, 2);
    made.add_columns({{0.0F, 0.0F}, {0.0F, 4.0F}});
    made.add_columns({{0.0F, 0.5F}, {4.0F, 4.5F}});
    expect_pieces(made, {{0, 0, 1, 0, 0, 0, 4}, {1, 0, 1, 0, 0.5, 4, 4.5}});
}

TEST(CutFaceDivide, ACavityEndsAtAStraightWall) {
    // Beneath a cover from 2 to 3 there is air at column 0 and a wall at column 1.
    FilmStack made(2, 2);
    made.add_columns({GROUND, GROUND});
    made.add_columns({{2.0F, 2.0F}, {1.0F, 2.0F}});
    made.add_columns({{2.0F, 3.0F}, {2.0F, 3.0F}});
    expect_pieces(made, {{0, 0, 0.5F, 0, 1, 0, 1},
                         {2, 0, 0.5F, 2, 3, 2, 3},
                         {0, 0.5F, 1, 0, 1, 0, 1},
                         {1, 0.5F, 1, 1, 2, 1, 2},
                         {2, 0.5F, 1, 2, 3, 2, 3}});
}

TEST(CutFaceDivide, AWallThatDoesNotFitItsCavityRunsOut) {
    // The same with a cover that comes down over the cavity: the wall of 1 would reach into it half-way.
    FilmStack made(2, 2);
    made.add_columns({GROUND, GROUND});
    made.add_columns({{1.5F, 1.5F}, {1.0F, 2.0F}});
    made.add_columns({{1.5F, 3.0F}, {2.0F, 3.0F}});
    expect_pieces(made, {{0, 0, 1, 0, 1, 0, 1}, {1, 0, 1, 1, 1, 1, 2}, {2, 0, 1, 1.5, 3, 2, 3}});
}

TEST(CutFaceDivide, ACavityOfOneColumnShowsToo) {
    // Film 1 floats at column 1 only, over a ground that it lies on at the columns beside.
    FilmStack made(3, 2);
    made.add_columns({GROUND, GROUND, GROUND});
    made.add_columns({{1.0F, 2.0F}, {1.5F, 2.0F}, {1.0F, 2.0F}});
    expect_pieces(
        made,
        {{0, 0, 1, 0, 1, 0, 1}, {1, 0, 1, 1, 2, 1.5, 2}, {0, 1, 2, 0, 1, 0, 1}, {1, 1, 2, 1.5, 2, 1, 2}});
}

TEST(CutFaceDivide, AReleasedFilmHangsAndEndsInTheAir) {
    FilmStack made(2, 2);
    made.add_columns({GROUND, GROUND});
    made.add_columns({{2.0F, 3.0F}, {1.0F, 1.0F}});
    expect_pieces(made, {{0, 0, 0.5F, 0, 1, 0, 1}, {1, 0, 0.5F, 2, 3, 2, 3}, {0, 0.5F, 1, 0, 1, 0, 1}});
}

TEST(CutFaceDivide, AHoleThroughAllFilmsIsAHole) {
    FilmStack made(4, 2);
    made.add_columns({GROUND, {0.0F, 0.0F}, {0.0F, 0.0F}, GROUND});
    expect_pieces(made, {{0, 0, 0.5F, 0, 1, 0, 1}, {0, 2.5F, 3, 0, 1, 0, 1}});
}

TEST(CutFaceCloseSlits, ASlitOfOneColumnIsClosed) {
    // Film 1 floats at column 2 only, over a ground that it lies on at the columns beside; at columns 5 and 6
    // a cavity is two columns wide.
    const FilmHeights film = {1.0F, 2.0F};
    FilmStack made(8, 2);
    made.add_columns({GROUND, GROUND, GROUND, GROUND, GROUND, GROUND, GROUND, GROUND});
    made.add_columns({film, film, {1.4F, 2.0F}, film, film, {1.4F, 2.0F}, {1.4F, 2.0F}, film});
    CutFace face = cut_face_begin(&made.stack);
    SettledFilm settled = settled_film_create(&made.stack, 1);
    FilmFloor floor = film_floor_create(&made.stack, 1);
    for (i32 i = 0; i < 2; ++i) {
        film_settle(&made.stack, i, &floor, &settled);
        cut_face_take(&face, i, &settled);
        film_floor_raise(i, &settled, &floor);
    }
    EXPECT_EQ(face.low[8 + 2], 1.4F) << "the heights have it";
    cut_face_close_slits(&face);
    EXPECT_EQ(face.low[8 + 2], 1.0F) << "closed";
    EXPECT_EQ(face.high[8 + 2], 2.0F);
    EXPECT_EQ(face.low[8 + 5], 1.4F) << "two columns are a cavity";
    EXPECT_EQ(face.low[8 + 6], 1.4F);
}

// Films of which at each column some are there, each 1 to 3 thick, without air between them or with some.
static void add_random_films(FilmStack *made, i32 films, bool with_air, std::mt19937 *random) {
    std::vector<f32> surface(static_cast<size_t>(made->stack.grid_n), 0.0F);
    for (i32 film = 0; film < films; ++film) {
        std::vector<FilmHeights> columns;
        for (f32 &height : surface) {
            const bool floats = with_air && (*random)() % 4 == 0;
            const f32 bottom = height + static_cast<f32>(floats ? (*random)() % 3 : 0);
            const f32 top = bottom + static_cast<f32>((*random)() % 4 * ((*random)() % 2));
            columns.push_back({bottom, top});
            height = top > bottom ? top : height;
        }
        made->add_columns(columns);
    }
}

// At x, in columns, the height of a side of a piece.
static f64 height_at(const CutPiece *piece, f64 left, f64 right, f64 x) {
    const f64 part = (x - static_cast<f64>(piece->left)) / static_cast<f64>(piece->right - piece->left);
    return left + (right - left) * part;
}

TEST(CutFaceDivide, FilmsCoverTheFaceWithoutCrackOrOverlap) {
    std::mt19937 random(20);
    i32 halves = 0;
    for (i32 round = 0; round < 100; ++round) {
        FilmStack made(12, 2);
        const bool with_air = round % 2 == 1;
        add_random_films(&made, 7, with_air, &random);
        const CutFace face = cut_face_create(&made.stack);
        for (i32 n = 0; n < 11; ++n) {
            for (const f64 part : {0.01, 0.3, 0.49, 0.51, 0.9, 0.99}) {
                const f64 x = n + part;
                f64 reached = 0.0;
                for (i32 i = face.first[n]; i < face.first[n + 1]; ++i) {
                    const CutPiece *piece = &face.pieces[i];
                    halves += piece->right - piece->left < 1.0F ? 1 : 0;
                    EXPECT_GE(piece->left, static_cast<f32>(n));
                    EXPECT_LE(piece->right, static_cast<f32>(n + 1));
                    if (static_cast<f64>(piece->left) > x || static_cast<f64>(piece->right) < x) {
                        continue;
                    }
                    const f64 low = height_at(piece, piece->left_low, piece->right_low, x);
                    if (with_air) {
                        EXPECT_GE(low, reached - 1e-9) << "round " << round << ", column " << n;
                    } else {
                        EXPECT_NEAR(low, reached, 1e-9) << "round " << round << ", column " << n;
                    }
                    reached = height_at(piece, piece->left_high, piece->right_high, x);
                    EXPECT_GE(reached, low - 1e-9);
                }
            }
        }
    }
    EXPECT_GT(halves, 1000) << "films that end half-way";
}

// Half of the thickness at the first column and at the last one, and the whole at all others.
static f64 area_of_heights(const CutFace &face, i32 film) {
    f64 area = 0.0;
    for (i32 n = 0; n < face.grid_n; ++n) {
        const i64 at = i64{film} * face.grid_n + n;
        const f64 thickness = static_cast<f64>(face.high[at]) - static_cast<f64>(face.low[at]);
        area += n == 0 || n + 1 == face.grid_n ? thickness * 0.5 : thickness;
    }
    return area;
}

TEST(CutFaceDivide, EachFilmHasTheAreaOfItsHeights) {
    std::mt19937 random(22);
    for (i32 round = 0; round < 100; ++round) {
        FilmStack made(30, 2);
        add_random_films(&made, 9, round % 2 == 1, &random);
        const CutFace face = cut_face_create(&made.stack);
        std::vector<f64> areas(static_cast<size_t>(face.film_count), 0.0);
        for (i32 i = 0; i < face.piece_count; ++i) {
            const CutPiece *piece = &face.pieces[i];
            areas[static_cast<size_t>(piece->film)] +=
                (piece->left_high - piece->left_low + piece->right_high - piece->right_low) * 0.5 *
                static_cast<f64>(piece->right - piece->left);
        }
        for (i32 film = 0; film < face.film_count; ++film) {
            const f64 expected = area_of_heights(face, film);
            EXPECT_NEAR(areas[static_cast<size_t>(film)], expected, 1e-12 * expected)
                << "round " << round << ", film " << film;
        }
    }
}

static f64 triangle_area(const CutTriangle &t) {
    return 0.5 * (static_cast<f64>(t.column[1] - t.column[0]) * static_cast<f64>(t.height[2] - t.height[0]) -
                  static_cast<f64>(t.column[2] - t.column[0]) * static_cast<f64>(t.height[1] - t.height[0]));
}

TEST(CutFaceTriangles, ShareTheirCornersAndCoverTheirPiece) {
    std::mt19937 random(21);
    FilmStack made(12, 2);
    add_random_films(&made, 7, false, &random);
    const CutFace face = cut_face_create(&made.stack);
    std::vector<std::vector<f32>> corners(24);  // heights of all corners by half columns
    const auto corners_at = [&corners](f32 column) { return &corners[static_cast<size_t>(column * 2.0F)]; };
    Owned<CutTriangle[]> triangles;
    i32 count = 0;
    i32 capacity = 0;
    for (i32 i = 0; i < face.piece_count; ++i) {
        const i32 first = count;
        cut_face_triangles(&face, i, &triangles, &count, &capacity);
        f64 area = 0.0;
        for (i32 k = first; k < count; ++k) {
            const CutTriangle &t = triangles[k];
            EXPECT_GT(triangle_area(t), 0.0) << "counter-clockwise, and no triangle without an area";
            area += triangle_area(t);
            for (i32 corner = 0; corner < 3; ++corner) {
                corners_at(t.column[corner])->push_back(t.height[corner]);
            }
        }
        const CutPiece *p = &face.pieces[i];
        EXPECT_NEAR(area,
                    0.5 * static_cast<f64>(p->right - p->left) *
                        (p->left_high - p->left_low + p->right_high - p->right_low),
                    1e-9);
    }
    for (i32 k = 0; k < count; ++k) {
        const CutTriangle &t = triangles[k];
        for (i32 corner = 0; corner < 3; ++corner) {
            const i32 next = (corner + 1) % 3;
            if (t.column[corner] != t.column[next]) {
                continue;
            }
            const f32 low = std::min(t.height[corner], t.height[next]);
            const f32 high = std::max(t.height[corner], t.height[next]);
            for (const f32 height : *corners_at(t.column[corner])) {
                EXPECT_FALSE(height > low && height < high) << "a corner lies within an edge";
            }
        }
    }
}

TEST(CutEdgesFind, TellsOfEndsAndSteps) {
    // As in InTheOpenTheGroundEndsWithTheFilmsOnIt.
    FilmStack made(2, 2);
    made.add_columns({GROUND, {0.0F, 1.5F}});
    made.add_columns({{1.0F, 2.0F}, {1.5F, 1.5F}});
    const CutFace face = cut_face_create(&made.stack);
    CutEdges edges = cut_edges_create(&made.stack, &face);
    const CutEdge film = cut_edges_find(&edges, 1, 0, 1);
    EXPECT_EQ(film.kind, CUT_EDGE_END);
    EXPECT_EQ(film.low, 1.0F);
    EXPECT_EQ(film.high, 2.0F);
    const CutEdge ground = cut_edges_find(&edges, 0, 0, 1);
    EXPECT_EQ(ground.kind, CUT_EDGE_STEP);
    EXPECT_EQ(ground.high, 1.0F);
    EXPECT_EQ(ground.behind, 1.5F);
    const CutEdge from_behind = cut_edges_find(&edges, 0, 1, 0);
    EXPECT_EQ(from_behind.high, 1.5F);
    EXPECT_EQ(from_behind.behind, 1.0F);
    EXPECT_EQ(cut_edges_find(&edges, 0, 0, 2).kind, CUT_EDGE_OTHER) << "along a row nothing ends";
}

TEST(CutEdgesFind, AreThoseOfTheFace) {
    std::mt19937 random(23);
    i32 open = 0;
    for (i32 round = 0; round < 50; ++round) {
        FilmStack made(12, 2);
        add_random_films(&made, 6, round % 2 == 1, &random);
        const CutFace face = cut_face_create(&made.stack);
        CutEdges edges = cut_edges_create(&made.stack, &face);
        for (i32 n = 0; n < 11; ++n) {
            for (i32 film = 0; film < 6; ++film) {
                const CutEdge edge = cut_edges_find(&edges, film, n, n + 1);
                if (edge.kind == CUT_EDGE_OTHER) {
                    continue;
                }
                ++open;
                i32 found = 0;
                for (i32 i = face.first[n]; i < face.first[n + 1]; ++i) {
                    const CutPiece *piece = &face.pieces[i];
                    const bool is_here = piece->film == film && piece->right == static_cast<f32>(n) + 0.5F;
                    found += is_here && static_cast<f32>(piece->right_low) == edge.low &&
                                     static_cast<f32>(piece->right_high) == edge.high
                                 ? 1
                                 : 0;
                }
                EXPECT_EQ(found, 1) << "round " << round << ", column " << n << ", film " << film;
            }
        }
    }
    EXPECT_GT(open, 100);
}
