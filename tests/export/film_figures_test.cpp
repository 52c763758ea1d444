// Tests of export/film_figures.h: bodies whose figures can be worked out by hand.
#include "export/film_figures.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/test_stack.h"

// 5 columns and 3 rows, half a micrometre apart: what is shown is 2 um wide and 1 um deep.
static constexpr i32 N = 5;
static constexpr i32 M = 3;
static constexpr f32 SPACING = 0.5F;

struct FigureFixture {
    Owned<Stack> stack = test_stack(N, M, SPACING);
    Layer *layer;

    FigureFixture(f32 bottom, f32 top) : layer(test_layer(stack.get(), "A", bottom, top)) {}
};

TEST(FilmFigures, OfASlab) {
    const FigureFixture fixture(1.0F, 1.25F);
    const FilmFigures figures = film_figures(fixture.layer);
    EXPECT_EQ(figures.middle, 0.25F);
    EXPECT_EQ(figures.smallest, 0.25F);
    EXPECT_EQ(figures.mean, 0.25);
    EXPECT_EQ(figures.largest, 0.25F);
    EXPECT_EQ(figures.coverage, 1.0);
    EXPECT_EQ(figures.face_area, 0.5);  // 2 um wide
    EXPECT_EQ(figures.volume, 0.5);     // and 1 um deep
    EXPECT_EQ(figures.highest, 1.25F);
    EXPECT_EQ(figures.step_height, 0.0F);
}

TEST(FilmFigures, OfAWedge) {
    const FigureFixture fixture(0.0F, 0.0F);
    for (i32 m = 0; m < M; ++m) {
        for (i32 n = 0; n < N; ++n) {
            fixture.layer->top[test_point(fixture.stack.get(), n, m)] = 0.25F * static_cast<f32>(n);
        }
    }
    const FilmFigures figures = film_figures(fixture.layer);
    EXPECT_EQ(figures.middle, 0.5F);
    EXPECT_EQ(figures.smallest, 0.25F);  // at its edge there is none of it
    EXPECT_EQ(figures.mean, 0.625);      // (0.25 + 0.5 + 0.75 + 1) / 4
    EXPECT_EQ(figures.largest, 1.0F);
    EXPECT_EQ(figures.coverage, 0.8);
    EXPECT_EQ(figures.face_area, 1.0);  // a triangle, 2 um wide and 1 um high
    EXPECT_EQ(figures.volume, 1.0);
    EXPECT_EQ(figures.highest, 1.0F);
    EXPECT_EQ(figures.step_height, 0.75F);
}

TEST(FilmFigures, OfASlabWithAHole) {
    const FigureFixture fixture(0.0F, 1.0F);
    const i64 hole = test_point(fixture.stack.get(), 3, 1);
    fixture.layer->top[hole] = 0.0F;
    const FilmFigures figures = film_figures(fixture.layer);
    EXPECT_EQ(figures.smallest, 1.0F);
    EXPECT_EQ(figures.mean, 1.0);
    EXPECT_DOUBLE_EQ(figures.coverage, 14.0 / 15.0);
    EXPECT_EQ(figures.face_area, 2.0);  // the hole is behind the face
    EXPECT_EQ(figures.volume, 1.75);    // less a pyramid: an area of four cells, 1 um2, times a quarter
    EXPECT_EQ(figures.step_height, 0.0F);
}

TEST(FilmFigures, OfAFilmThatIsNotInTheMiddle) {
    const FigureFixture fixture(0.0F, 1.0F);
    fixture.layer->top[N / 2] = 0.0F;
    const FilmFigures figures = film_figures(fixture.layer);
    EXPECT_EQ(figures.middle, 0.0F);
    EXPECT_EQ(figures.face_area, 1.5);  // 2 um less two triangles, each 0.5 um wide and 1 um high
}

TEST(FilmFigures, OfASurfaceThatIsNotFlat) {
    const FigureFixture fixture(0.0F, 1.0F);
    for (i64 i = 0; i < i64{N} * M; ++i) {
        fixture.layer->bottom[i] = i % 2 == 0 ? -1.0F : 0.5F;
        fixture.layer->top[i] = fixture.layer->bottom[i] + 0.5F;
    }
    const FilmFigures figures = film_figures(fixture.layer);
    EXPECT_EQ(figures.smallest, 0.5F);
    EXPECT_EQ(figures.largest, 0.5F);
    EXPECT_EQ(figures.highest, 1.0F);
    EXPECT_EQ(figures.step_height, 1.5F);  // from -0.5 to 1
}

TEST(FilmFigures, OfAHeightThatIsNoNumber) {
    const FigureFixture fixture(0.0F, 1.0F);
    fixture.layer->top[2 * N + 1] = NAN;
    const FilmFigures figures = film_figures(fixture.layer);
    EXPECT_TRUE(std::isnan(figures.smallest));
    EXPECT_TRUE(std::isnan(figures.mean));
    EXPECT_TRUE(std::isnan(figures.largest));
    EXPECT_TRUE(std::isnan(figures.volume));
    EXPECT_TRUE(std::isnan(figures.highest));
    EXPECT_TRUE(std::isnan(figures.step_height));
    EXPECT_EQ(figures.face_area, 2.0);  // the face has no part in it
    EXPECT_EQ(figures.middle, 1.0F);
}

TEST(FilmFigures, OfASingleRowThereIsNoVolume) {
    const Owned<Stack> stack = test_stack(3, 1, 1.0F);
    const FilmFigures figures = film_figures(test_layer(stack.get(), "A", 0.0F, 2.0F));
    EXPECT_EQ(figures.face_area, 4.0);
    EXPECT_EQ(figures.volume, 0.0);
}

// Quads are two triangles each, which meet between (n + 1, m) and (n, m + 1).
TEST(FilmFigures, AtACornerOfTheGridTheVolumeIsThatOfItsTriangles) {
    const struct {
        i32 n, m;
        f64 triangles;
    } cases[] = {{0, 0, 1.0},         {N - 1, 0, 2.0}, {0, M - 1, 2.0},
                 {N - 1, M - 1, 1.0}, {1, 0, 3.0},     {1, 1, 6.0}};
    for (const auto &c : cases) {
        const FigureFixture fixture(0.0F, 0.0F);
        fixture.layer->top[test_point(fixture.stack.get(), c.n, c.m)] = 3.0F;
        // Each is a spire: a third of its base of 0.125 um2 times 3 um.
        EXPECT_DOUBLE_EQ(film_figures(fixture.layer).volume, c.triangles * 0.125) << c.n << ", " << c.m;
    }
}
