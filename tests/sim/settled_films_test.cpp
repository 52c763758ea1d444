#include "sim/settled_films.h"

#include <cmath>
#include <limits>
#include "tests/support/film_stack.h"

static const FilmHeights GROUND = {0.0F, 1.0F};

// Settles all films and returns the last one.
static SettledFilm settle_all(const FilmStack &made) {
    SettledFilm film = settled_film_create(&made.stack, made.stack.grid_m);
    FilmFloor floor = film_floor_create(&made.stack, made.stack.grid_m);
    for (i32 slot = 0; slot < made.stack.layer_count; ++slot) {
        film_settle(&made.stack, slot, &floor, &film);
        film_floor_raise(slot, &film, &floor);
    }
    return film;
}

static void expect_point(const SettledFilm &film, i32 point, f32 bottom, f32 top, i32 presence) {
    EXPECT_EQ(film.bottom[point], bottom) << "bottom at point " << point;
    EXPECT_EQ(film.top[point], top) << "top at point " << point;
    EXPECT_EQ(film.presence[point], presence) << "presence at point " << point;
}

TEST(FilmSettle, AnAbsentFilmLiesOnWhatIsBelowIt) {
    // The stale heights of the film at columns 2 and 3 are above and below the ground.
    FilmStack made(4, 2);
    made.add_columns({GROUND, GROUND, GROUND, GROUND});
    made.add_columns({{1.0F, 3.0F}, {1.0F, 2.0F}, {1.5F, 1.5F}, {0.5F, 0.5F}});
    const SettledFilm film = settle_all(made);
    expect_point(film, 0, 1.0F, 3.0F, FILM_THERE);
    expect_point(film, 1, 1.0F, 2.0F, FILM_THERE);
    expect_point(film, 2, 1.0F, 1.0F, 0);
    expect_point(film, 3, 1.0F, 1.0F, 0);
}

TEST(FilmSettle, WhatRoundingLeavesIsNothing) {
    // A section of 4 micrometres: 4e-6 and less is rounding.
    FilmStack made(4, 2);
    made.add_columns({GROUND, GROUND, GROUND, GROUND});
    made.add_columns({{1.0F, 1.000001F}, {1.000001F, 2.0F}, {1.00001F, 2.0F}, {1.0F, 1.00001F}});
    const SettledFilm film = settle_all(made);
    expect_point(film, 0, 1.0F, 1.0F, 0);
    expect_point(film, 1, 1.0F, 2.0F, FILM_THERE);
    expect_point(film, 2, 1.00001F, 2.0F, FILM_THERE | FILM_FLOATS);
    expect_point(film, 3, 1.0F, 1.00001F, FILM_THERE);
}

TEST(FilmSettle, AReleasedFilmHasNoCurtain) {
    // A beam at 2 to 3 over the ground at 1 ends behind column 1; its foot stands at column 4.
    FilmStack made(6, 2);
    made.add_columns({GROUND, GROUND, GROUND, GROUND, GROUND, GROUND});
    made.add_columns({{2.0F, 3.0F}, {2.0F, 3.0F}, {0.5F, 0.5F}, {0.5F, 0.5F}, {1.0F, 3.0F}, {0.5F, 0.5F}});
    const SettledFilm film = settle_all(made);
    expect_point(film, 1, 2.0F, 3.0F, FILM_THERE | FILM_FLOATS);
    expect_point(film, 2, 1.0F, 1.0F, 0);
    expect_point(film, 4, 1.0F, 3.0F, FILM_THERE);
    expect_point(film, 5, 1.0F, 1.0F, 0);
}

TEST(FilmSettle, AFilmThatFloatsBeneathAnotherEndsInTheAir) {
    // A plate at 2 to 2.5 between ground and cover, taken away behind column 1, where it was at 2.2.
    FilmStack made(3, 2);
    made.add_columns({GROUND, GROUND, GROUND});
    made.add_columns({{2.0F, 2.5F}, {2.2F, 2.2F}, {2.2F, 2.2F}});
    made.add_columns({{3.0F, 4.0F}, {3.0F, 4.0F}, {3.0F, 4.0F}});
    SettledFilm film = settled_film_create(&made.stack, made.stack.grid_m);
    FilmFloor floor = film_floor_create(&made.stack, made.stack.grid_m);
    for (const i32 slot : {0, 1}) {
        film_settle(&made.stack, slot, &floor, &film);
        film_floor_raise(slot, &film, &floor);
    }
    expect_point(film, 1, 2.0F, 2.0F, FILM_FLOATS);
    expect_point(film, 2, 1.0F, 1.0F, 0);
}

TEST(FilmSettle, StaleHeightsDoNotLiftAFilmsEnd) {
    // Where it was taken away the film's heights are above what it has beside, or below the ground.
    FilmStack made(4, 2);
    made.add_columns({GROUND, GROUND, GROUND, GROUND});
    made.add_columns({{5.0F, 5.0F}, {1.0F, 2.0F}, {0.5F, 0.5F}, {0.5F, 0.5F}});
    const SettledFilm film = settle_all(made);
    expect_point(film, 0, 1.0F, 1.0F, 0);
    expect_point(film, 2, 1.0F, 1.0F, 0);
}

TEST(FilmSettle, AFilmThatHangsOnAnotherEndsThere) {
    // A lining from 2 to 2.5 beneath a beam from 2.5 to 3 ends first; the beam goes on at 2.5.
    FilmStack made(3, 2);
    made.add_columns({GROUND, GROUND, GROUND});
    made.add_columns({{2.0F, 2.5F}, {2.0F, 2.0F}, {2.0F, 2.0F}});
    made.add_columns({{2.5F, 3.0F}, {2.5F, 3.0F}, {2.5F, 3.0F}});
    SettledFilm film = settled_film_create(&made.stack, made.stack.grid_m);
    FilmFloor floor = film_floor_create(&made.stack, made.stack.grid_m);
    for (const i32 slot : {0, 1}) {
        film_settle(&made.stack, slot, &floor, &film);
        film_floor_raise(slot, &film, &floor);
    }
    expect_point(film, 0, 2.0F, 2.5F, FILM_THERE | FILM_FLOATS);
    expect_point(film, 1, 2.5F, 2.5F, FILM_FLOATS);
    expect_point(film, 2, 1.0F, 1.0F, 0);
    EXPECT_EQ(floor.ended_by[0], -1);
    EXPECT_EQ(floor.ended_by[1], 1);
    film_settle(&made.stack, 2, &floor, &film);
    expect_point(film, 1, 2.5F, 3.0F, FILM_THERE);
    expect_point(film, 2, 2.5F, 3.0F, FILM_THERE | FILM_FLOATS);
}

TEST(FilmSettle, TheLowerFilmKeepsItsOwnWhereHeightsOverlap) {
    FilmStack made(2, 2);
    made.add_columns({GROUND, GROUND});
    made.add_columns({{0.5F, 2.0F}, {0.2F, 0.8F}});
    const SettledFilm film = settle_all(made);
    expect_point(film, 0, 1.0F, 2.0F, FILM_THERE);
    expect_point(film, 1, 1.0F, 1.0F, 0);
}

TEST(FilmSettle, AnyHeightsAreSafe) {
    const f32 nan = std::numeric_limits<f32>::quiet_NaN();
    FilmStack made(4, 2);
    made.add_columns({{0.0F, nan}, {nan, 1.0F}, {nan, nan}, {0.0F, -1.0F}});
    made.add_columns({{nan, 2.0F}, {1.0F, nan}, {nan, 1.0F}, {3.0F, 2.0F}});
    const SettledFilm film = settle_all(made);
    for (i32 point = 0; point < 8; ++point) {
        EXPECT_TRUE(std::isfinite(film.bottom[point])) << point;
        EXPECT_GE(film.top[point], film.bottom[point]) << point;
    }
}

TEST(FineFilmIsDrawn, ClearAndSmallOnesAreNot) {
    FilmStack made(2, 2);
    EXPECT_TRUE(film_is_shown(made.add_columns({GROUND, GROUND}, 0.01F)));
    EXPECT_FALSE(film_is_shown(made.add_columns({GROUND, GROUND}, 0.0F)));
    EXPECT_FALSE(film_is_shown(nullptr));
    FilmStack row(2, 1);
    EXPECT_TRUE(film_is_shown(row.add_columns({GROUND, GROUND}))) << "it has a cut face";
    FilmStack column(1, 2);
    EXPECT_FALSE(film_is_shown(column.add_columns({GROUND})));
}
