// Tests of export/solid_film.h: where films run out, and that none reaches into another.
#include "export/solid_film.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

// All films of a stack without empty slots.
static std::vector<SolidFilm> films_of(const Stack *stack) {
    const SolidFloor floor = solid_floor_create(stack);
    std::vector<SolidFilm> films;
    films.reserve(static_cast<size_t>(stack->layer_count));
    for (i32 slot = 0; slot < stack->layer_count; ++slot) {
        films.push_back(solid_film_create(stack, slot, &floor));
    }
    return films;
}

// Whether the film has a height at a point: it is there, or beside.
static bool has_height(const SolidFilm &film, i32 n, i32 m) {
    const i32 around[7][2] = {{0, 0}, {1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, -1}, {-1, 1}};
    for (const i32(&step)[2] : around) {
        const i32 x = n + step[0];
        const i32 y = m + step[1];
        if (x >= 0 && x < film.grid_n && y >= 0 && y < film.grid_m && film.there[y * film.grid_n + x] != 0) {
            return true;
        }
    }
    return false;
}

TEST(SolidFilm, InTheOpenAFilmEndsWhereItsUndersideWas) {
    const Owned<Stack> stack = test_stack(4, 2, 1.0F);
    Layer *lower = test_layer(stack.get(), "A", 0.0F, 1.0F);
    Layer *upper = test_layer(stack.get(), "B", 1.0F, 1.5F);
    for (const i32 m : {0, 1}) {
        for (const i32 n : {2, 3}) {  // etched together
            lower->top[test_point(stack.get(), n, m)] = 0.25F;
            upper->top[test_point(stack.get(), n, m)] = 1.0F;
        }
    }
    const std::vector<SolidFilm> films = films_of(stack.get());
    EXPECT_EQ(films[1].there_count, 4);
    EXPECT_EQ(films[1].bottom[2], 1.0F);
    EXPECT_EQ(films[1].top[2], 1.0F);
    EXPECT_EQ(films[1].there[2], 0);
}

TEST(SolidFilm, WhereSomethingElseFillsThePlaceItEndsBetweenTheTwo) {
    const Owned<Stack> stack = test_stack(4, 2, 1.0F);
    Layer *lower = test_layer(stack.get(), "A", 0.0F, 1.0F);
    Layer *upper = test_layer(stack.get(), "B", 1.0F, 1.5F);
    Layer *fill = test_layer(stack.get(), "C", 1.5F, 2.0F);
    for (const i32 m : {0, 1}) {
        for (const i32 n : {2, 3}) {
            const i64 point = test_point(stack.get(), n, m);
            lower->top[point] = 0.25F;
            upper->top[point] = 1.0F;
            fill->bottom[point] = 0.25F;
        }
    }
    const std::vector<SolidFilm> films = films_of(stack.get());
    EXPECT_EQ(films[1].bottom[2], 0.25F);
    EXPECT_EQ(films[1].top[2], 0.25F);
    EXPECT_EQ(films[2].bottom[2], 0.25F);
    EXPECT_EQ(films[0].top[2], 0.25F);
}

TEST(SolidFilm, ABridgeEndsInTheAir) {
    const Owned<Stack> stack = test_stack(4, 2, 1.0F);
    test_layer(stack.get(), "A", 0.0F, 0.5F);
    Layer *bridge = test_layer(stack.get(), "B", 1.0F, 1.5F);
    for (const i32 m : {0, 1}) {
        bridge->top[test_point(stack.get(), 3, m)] = bridge->bottom[test_point(stack.get(), 3, m)] = 1.25F;
    }
    const std::vector<SolidFilm> films = films_of(stack.get());
    EXPECT_EQ(films[1].bottom[3], 1.25F);
    EXPECT_EQ(films[1].top[3], 1.25F);
}

// Films that grow one on the other, are cut here and there together with what is below, and leave heights
// behind that have nothing to do with what is there later.
static void grow_randomly(TestRandom *random, Stack *stack) {
    const i64 count = stack_point_count(stack);
    std::vector<f32> surface(static_cast<size_t>(count), 0.0F);
    for (i32 slot = 0; slot < 6; ++slot) {
        Layer *layer = test_layer(stack, "A", 0.0F, 0.0F);
        for (i64 point = 0; point < count; ++point) {
            f32 *height = &surface[static_cast<size_t>(point)];
            layer->bottom[point] = *height + (test_random_bool(random, 0.1) ? 0.5F : 0.0F);
            layer->top[point] =
                layer->bottom[point] + 0.25F * static_cast<f32>(test_random_i32(random, 0, 2));
            const bool cut = test_random_bool(random, 0.3);
            for (i32 i = slot; cut && i >= 0 && i > slot - 3; --i) {
                stack->layers[i]->top[point] = stack->layers[i]->bottom[point];
            }
            *height = 0.0F;
            for (i32 i = 0; i <= slot; ++i) {
                const Layer *below = stack->layers[i];
                *height = below->top[point] > below->bottom[point] ? below->top[point] : *height;
            }
        }
    }
}

TEST(SolidFilm, NoFilmReachesIntoAnother) {
    TestRandom random = test_random_start(3);
    i32 settled = 0;
    for (i32 run = 0; run < 30; ++run) {
        const Owned<Stack> stack = test_stack(17, 13, 1.0F);
        grow_randomly(&random, stack.get());
        const std::vector<SolidFilm> films = films_of(stack.get());
        for (i32 m = 0; m < 13; ++m) {
            for (i32 n = 0; n < 17; ++n) {
                const i64 point = test_point(stack.get(), n, m);
                f32 below = -1.0F;
                for (size_t i = 0; i < films.size(); ++i) {
                    if (!has_height(films[i], n, m)) {
                        continue;
                    }
                    EXPECT_LE(films[i].bottom[point], films[i].top[point]);
                    EXPECT_LE(below, films[i].bottom[point]) << "film " << i << " at " << n << ", " << m;
                    below = films[i].top[point];
                    settled += films[i].bottom[point] != stack->layers[i]->bottom[point] ? 1 : 0;
                    if (films[i].there[point] != 0) {
                        EXPECT_EQ(films[i].bottom[point], stack->layers[i]->bottom[point]);
                        EXPECT_EQ(films[i].top[point], stack->layers[i]->top[point]);
                    }
                }
            }
        }
    }
    EXPECT_GT(settled, 100) << "ends that had to be moved";
}
