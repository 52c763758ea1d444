#include "sim/cut_face.h"

#include <algorithm>
#include <random>
#include "tests/support/film_stack.h"

static const FilmHeights GROUND = {0.0F, 1.0F};

static void expect_piece(const CutFace &face, i32 index, const CutPiece &expected) {
    ASSERT_LT(index, face.piece_count);
    const CutPiece piece = face.pieces[index];
    EXPECT_EQ(piece.film, expected.film) << "piece " << index;
    EXPECT_EQ(piece.n, expected.n) << "piece " << index;
    EXPECT_EQ(piece.left_low, expected.left_low) << "piece " << index;
    EXPECT_EQ(piece.left_high, expected.left_high) << "piece " << index;
    EXPECT_EQ(piece.right_low, expected.right_low) << "piece " << index;
    EXPECT_EQ(piece.right_high, expected.right_high) << "piece " << index;
}

static CutFace make_face(const FilmStack &made) {
    return cut_face_create(&made.stack);
}

TEST(CutFaceDivide, FilmsThatAreThereAtBothColumnsAreJoined) {
    FilmStack made(2, 2);
    made.add_columns({{0.0F, 1.0F}, {0.0F, 2.0F}});
    made.add_columns({{1.0F, 4.0F}, {2.0F, 3.0F}});
    const CutFace face = make_face(made);
    ASSERT_EQ(face.piece_count, 2);
    expect_piece(face, 0, {0, 0, 0.0F, 1.0F, 0.0F, 2.0F});
    expect_piece(face, 1, {1, 0, 1.0F, 4.0F, 2.0F, 3.0F});
}

TEST(CutFaceDivide, OverNothingAFilmRunsOutToTheNextColumn) {
    FilmStack made(3, 2);
    made.add_columns({GROUND, GROUND, GROUND});
    made.add_columns({{1.0F, 1.0F}, {1.0F, 2.0F}, {1.7F, 1.7F}});
    const CutFace face = make_face(made);
    ASSERT_EQ(face.piece_count, 4);
    expect_piece(face, 1, {1, 0, 1.0F, 1.0F, 1.0F, 2.0F});
    expect_piece(face, 3, {1, 1, 1.0F, 2.0F, 1.0F, 1.0F});
}

TEST(CutFaceDivide, AgainstOtherFilmsAFilmIsCutStraight) {
    // Two films from 1 to 2 and 2 to 3 end where a plug from 1 to 3 begins, under a cover that is everywhere:
    // the plug is the upper one and reaches as far as the column at which they were last.
    FilmStack made(2, 2);
    made.add_columns({GROUND, GROUND});
    made.add_columns({{1.0F, 2.0F}, {1.6F, 1.6F}});
    made.add_columns({{2.0F, 3.0F}, {2.6F, 2.6F}});
    made.add_columns({{3.0F, 3.0F}, {1.0F, 3.0F}});
    made.add_columns({{3.0F, 4.0F}, {3.0F, 5.0F}});
    const CutFace face = make_face(made);
    ASSERT_EQ(face.piece_count, 3);
    expect_piece(face, 0, {0, 0, 0.0F, 1.0F, 0.0F, 1.0F});
    expect_piece(face, 1, {3, 0, 1.0F, 3.0F, 1.0F, 3.0F});
    expect_piece(face, 2, {4, 0, 3.0F, 4.0F, 3.0F, 5.0F});
}

TEST(CutFaceDivide, ACutStackKeepsItsHeightsAndFillsWhatIsThere) {
    // The same from the other side, the plug lower than the films: at its column they get its height.
    FilmStack made(2, 2);
    made.add_columns({GROUND, GROUND});
    made.add_columns({{1.0F, 2.5F}, {1.0F, 1.0F}});
    made.add_columns({{2.5F, 2.5F}, {1.0F, 2.0F}});
    made.add_columns({{2.5F, 2.5F}, {2.0F, 3.0F}});
    const CutFace face = make_face(made);
    ASSERT_EQ(face.piece_count, 3);
    expect_piece(face, 1, {2, 0, 1.0F, 2.0F, 1.0F, 2.0F});
    expect_piece(face, 2, {3, 0, 2.0F, 2.5F, 2.0F, 3.0F});
}

TEST(CutFaceDivide, BesideAFilledHoleFilmsEndStraight) {
    // A lining from 1 to 3 at the bottom of a hole lies on two films, from 1 to 1.5 and from 1.5 to 2.5, at
    // the next column: it is the wall.
    FilmStack hole(2, 2);
    hole.add_columns({GROUND, GROUND});
    hole.add_columns({{1.0F, 1.0F}, {1.0F, 1.5F}});
    hole.add_columns({{1.0F, 1.0F}, {1.5F, 2.5F}});
    hole.add_columns({{1.0F, 3.0F}, {2.5F, 3.0F}});
    const CutFace filled = make_face(hole);
    ASSERT_EQ(filled.piece_count, 2);
    expect_piece(filled, 0, {0, 0, 0.0F, 1.0F, 0.0F, 1.0F});
    expect_piece(filled, 1, {3, 0, 1.0F, 3.0F, 1.0F, 3.0F});

    // A mesa of the ground from 0 to 3 beside two films that fill up to its height, under a flat cover: the
    // mesa is the wall.
    FilmStack mesa(2, 2);
    mesa.add_columns({GROUND, {0.0F, 3.0F}});
    mesa.add_columns({{1.0F, 2.0F}, {3.0F, 3.0F}});
    mesa.add_columns({{2.0F, 3.0F}, {3.0F, 3.0F}});
    mesa.add_columns({{3.0F, 4.0F}, {3.0F, 4.0F}});
    const CutFace beside = make_face(mesa);
    ASSERT_EQ(beside.piece_count, 2);
    expect_piece(beside, 0, {0, 0, 0.0F, 3.0F, 0.0F, 3.0F});
    expect_piece(beside, 1, {3, 0, 3.0F, 4.0F, 3.0F, 4.0F});
}

TEST(CutFaceDivide, AnOpenWallKeepsToItsSurfaces) {
    // Two films from 1 to 2 and 2 to 3 end in the open beside a lower one from 1 to 1.5. The upper one ends
    // in the air at 2.
    FilmStack made(2, 2);
    made.add_columns({GROUND, GROUND});
    made.add_columns({{1.0F, 1.0F}, {1.0F, 1.5F}});
    made.add_columns({{1.0F, 2.0F}, {1.5F, 1.5F}});
    made.add_columns({{2.0F, 3.0F}, {2.0F, 2.0F}});
    const CutFace face = make_face(made);
    ASSERT_EQ(face.piece_count, 4);
    expect_piece(face, 1, {1, 0, 1.0F, 1.0F, 1.0F, 1.5F});
    expect_piece(face, 2, {2, 0, 1.0F, 2.0F, 1.5F, 1.5F});
    expect_piece(face, 3, {3, 0, 2.0F, 3.0F, 2.0F, 2.0F});
}

TEST(CutFaceDivide, ACavityShowsWhereTheHeightsHaveOne) {
    // Beneath a cover from 2 to 3 there is air at columns 0 to 2 and a wall at columns 3 and 4.
    FilmStack made(5, 2);
    made.add_columns({GROUND, GROUND, GROUND, GROUND, GROUND});
    made.add_columns({{2.0F, 2.0F}, {2.0F, 2.0F}, {2.0F, 2.0F}, {1.0F, 2.0F}, {1.0F, 2.0F}});
    made.add_columns({{2.0F, 3.0F}, {2.0F, 3.0F}, {2.0F, 3.0F}, {2.0F, 3.0F}, {2.0F, 3.0F}});
    const CutFace face = make_face(made);
    ASSERT_EQ(face.piece_count, 10);
    expect_piece(face, 0, {0, 0, 0.0F, 1.0F, 0.0F, 1.0F});
    expect_piece(face, 1, {2, 0, 2.0F, 3.0F, 2.0F, 3.0F});
    expect_piece(face, 2, {0, 1, 0.0F, 1.0F, 0.0F, 1.0F});
    expect_piece(face, 3, {2, 1, 2.0F, 3.0F, 2.0F, 3.0F});
    expect_piece(face, 5, {1, 2, 1.0F, 2.0F, 1.0F, 2.0F});  // cut straight
    expect_piece(face, 8, {1, 3, 1.0F, 2.0F, 1.0F, 2.0F});
}

TEST(CutFaceDivide, AReleasedFilmHangsAndEndsInTheAir) {
    FilmStack made(3, 2);
    made.add_columns({GROUND, GROUND, GROUND});
    made.add_columns({{2.0F, 3.0F}, {2.0F, 3.0F}, {1.0F, 1.0F}});
    const CutFace face = make_face(made);
    ASSERT_EQ(face.piece_count, 4);
    expect_piece(face, 1, {1, 0, 2.0F, 3.0F, 2.0F, 3.0F});
    expect_piece(face, 3, {1, 1, 2.0F, 3.0F, 2.0F, 2.0F});
}

TEST(CutFaceDivide, AHoleThroughAllFilmsIsAHole) {
    FilmStack made(4, 2);
    made.add_columns({GROUND, {0.0F, 0.0F}, {0.0F, 0.0F}, GROUND});
    const CutFace face = make_face(made);
    ASSERT_EQ(face.piece_count, 2);
    expect_piece(face, 0, {0, 0, 0.0F, 1.0F, 0.0F, 0.0F});
    expect_piece(face, 1, {0, 2, 0.0F, 0.0F, 0.0F, 1.0F});
}

TEST(CutFaceDivide, ASlitOfOneColumnIsClosed) {
    // Film 1 floats at column 2 only, over a ground that it lies on at the columns beside; at column 5 a
    // ridge of the ground stands on one side, and air is open on the other.
    const FilmHeights film = {1.0F, 2.0F};
    FilmStack made(8, 2);
    made.add_columns({GROUND, GROUND, GROUND, GROUND, GROUND, GROUND, GROUND, GROUND});
    made.add_columns({film, film, {1.4F, 2.0F}, film, film, {1.4F, 2.0F}, {1.4F, 2.0F}, film});
    const CutFace face = make_face(made);
    EXPECT_EQ(face.low[8 + 2], 1.0F) << "closed";
    EXPECT_EQ(face.high[8 + 2], 2.0F);
    EXPECT_EQ(face.low[8 + 5], 1.4F) << "two columns are a cavity";
    EXPECT_EQ(face.low[8 + 6], 1.4F);
}

// Films without air between them: at each column some of them are there, each 1 to 3 thick.
static void add_random_films(FilmStack *made, i32 films, std::mt19937 *random) {
    std::vector<f32> surface(static_cast<size_t>(made->stack.grid_n), 0.0F);
    for (i32 film = 0; film < films; ++film) {
        std::vector<FilmHeights> columns;
        for (f32 &height : surface) {
            const f32 bottom = height;
            height += static_cast<f32>((*random)() % 4 * ((*random)() % 2));
            columns.push_back({bottom, height});
        }
        made->add_columns(columns);
    }
}

// At x, from 0 to 1 between two columns, the height of a straight line.
static f64 between(f32 left, f32 right, f64 x) {
    return static_cast<f64>(left) + (static_cast<f64>(right) - static_cast<f64>(left)) * x;
}

TEST(CutFaceDivide, TouchingFilmsCoverTheFaceWithoutCrackOrOverlap) {
    std::mt19937 random(20);
    for (i32 round = 0; round < 50; ++round) {
        FilmStack made(12, 2);
        add_random_films(&made, 7, &random);
        const CutFace face = make_face(made);
        const f32 *surface = face.high.get() + i64{face.film_count - 1} * face.grid_n;
        for (i32 n = 0; n < 11; ++n) {
            for (const f64 x : {0.01, 0.3, 0.5, 0.9, 0.99}) {
                f64 reached = 0.0;
                for (i32 i = face.first[n]; i < face.first[n + 1]; ++i) {
                    const CutPiece *piece = &face.pieces[i];
                    EXPECT_EQ(piece->n, n);
                    EXPECT_NEAR(between(piece->left_low, piece->right_low, x), reached, 1e-9)
                        << "round " << round << ", column " << n << ", film " << piece->film;
                    reached = between(piece->left_high, piece->right_high, x);
                }
                EXPECT_NEAR(reached, between(surface[n], surface[n + 1], x), 1e-9);
            }
        }
    }
}

TEST(CutFaceTriangles, ShareTheirCornersAndCoverTheirPiece) {
    std::mt19937 random(21);
    FilmStack made(12, 2);
    add_random_films(&made, 7, &random);
    const CutFace face = make_face(made);
    std::vector<std::vector<f32>> corners(12);  // heights of all corners by column
    Owned<CutTriangle[]> triangles;
    i32 count = 0;
    i32 capacity = 0;
    for (i32 i = 0; i < face.piece_count; ++i) {
        const i32 first = count;
        cut_face_triangles(&face, i, &triangles, &count, &capacity);
        f64 area = 0.0;
        for (i32 k = first; k < count; ++k) {
            const CutTriangle &t = triangles[k];
            const f64 turn = (t.n[1] - t.n[0]) * static_cast<f64>(t.height[2] - t.height[0]) -
                             (t.n[2] - t.n[0]) * static_cast<f64>(t.height[1] - t.height[0]);
            EXPECT_GT(turn, 0.0) << "counter-clockwise, and no triangle without an area";
            area += turn * 0.5;
            for (i32 corner = 0; corner < 3; ++corner) {
                corners[static_cast<size_t>(t.n[corner])].push_back(t.height[corner]);
            }
        }
        const CutPiece *p = &face.pieces[i];
        EXPECT_NEAR(area, 0.5 * static_cast<f64>(p->left_high - p->left_low + p->right_high - p->right_low),
                    1e-9);
    }
    for (i32 k = 0; k < count; ++k) {
        const CutTriangle &t = triangles[k];
        for (i32 corner = 0; corner < 3; ++corner) {
            const i32 next = (corner + 1) % 3;
            if (t.n[corner] != t.n[next]) {
                continue;
            }
            const f32 low = std::min(t.height[corner], t.height[next]);
            const f32 high = std::max(t.height[corner], t.height[next]);
            for (const f32 height : corners[static_cast<size_t>(t.n[corner])]) {
                EXPECT_FALSE(height > low && height < high) << "a corner lies within an edge";
            }
        }
    }
}
