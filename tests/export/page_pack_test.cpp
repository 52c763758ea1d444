// Tests of export/page_pack.h: what of a stack goes into a page with each step.
#include "export/page_pack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "export/page_writer.h"
#include "platform/platform.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

// A stack of 6 x 4 points with its page.
struct PageScene {
    Owned<Stack> stack;
    Owned<PageWriter> page;
};

static PageScene start_scene() {
    PageScene scene;
    scene.stack = test_stack(6, 4, 1);
    scene.stack->steps = step_list_create();
    step_list_append(scene.stack->steps, memory_new_zeroed<ProcessStep>());
    const ExportFacts facts = {"Quarn 1.2.3", nullptr, nullptr, nullptr, ""};
    scene.page.reset(page_writer_create(scene.stack.get(), &facts, ""));
    return scene;
}

// Adds a step of the stack as it is; what it took down lives as long as the page.
static const PageStep *add_step(PageScene *scene) {
    const ExportFacts facts = {};
    const ExportStep step = {scene->stack.get(), 0, 0, L"", nullptr, 1, &facts};
    EXPECT_TRUE(page_writer_add(scene->page.get(), &step));
    return &scene->page->steps[scene->page->step_count - 1];
}

static void raise_part(const Stack *stack, Layer *layer, f32 by) {
    for (i64 i = stack_point_count(stack) / 2; i < stack_point_count(stack); ++i) {
        layer->top[i] += by * static_cast<f32>(1 + i % 3);
    }
}

TEST(PagePackStep, TheFirstStepHoldsEveryFilm) {
    PageScene scene = start_scene();
    test_layer(scene.stack.get(), SUBSTRATE_MATERIAL, 0, 1);
    test_layer(scene.stack.get(), "A", 1, 1.5F);
    const PageStep *step = add_step(&scene);
    // The bottom of A is the top of the substrate, which is there already.
    ASSERT_EQ(step->change_count, 2);
    EXPECT_EQ(step->changes[0].film, 0);
    EXPECT_EQ(step->changes[0].bottom, 0);
    EXPECT_EQ(step->changes[0].top, 1);
    EXPECT_EQ(step->changes[1].film, 1);
    EXPECT_EQ(step->changes[1].bottom, 1);
    EXPECT_EQ(step->changes[1].top, 2);
    EXPECT_EQ(step->removed_count, 0);
    ASSERT_EQ(step->plane_count, 3);
    EXPECT_EQ(step->planes[0].bytes, 0);
    // 1,000,000 quanta, twice that with the sign, need three bytes.
    EXPECT_EQ(step->planes[1].bytes, 3);
    EXPECT_EQ(scene.page->film_count, 2);
    EXPECT_STREQ(scene.page->films[1].name, "A");
}

TEST(PagePackStep, WhatStaysAsItWasTakesNoPlane) {
    PageScene scene = start_scene();
    test_layer(scene.stack.get(), SUBSTRATE_MATERIAL, 0, 1);
    Layer *film = test_layer(scene.stack.get(), "A", 1, 1.5F);
    add_step(&scene);
    const PageStep *step = add_step(&scene);
    EXPECT_EQ(step->change_count, 0);
    EXPECT_EQ(step->removed_count, 0);
    EXPECT_EQ(step->plane_count, 0);

    film->top[3] = 2;
    step = add_step(&scene);
    ASSERT_EQ(step->change_count, 1);
    EXPECT_EQ(step->changes[0].film, 1);
    EXPECT_EQ(step->changes[0].bottom, 1);
    EXPECT_EQ(step->changes[0].top, 3);
    EXPECT_EQ(step->plane_count, 1);
}

TEST(PagePackStep, AChangeIsTheDifferenceFromThePlaneBefore) {
    PageScene scene = start_scene();
    Layer *film = test_layer(scene.stack.get(), SUBSTRATE_MATERIAL, 0, 1);
    raise_part(scene.stack.get(), film, 0.25F);
    add_step(&scene);
    film->top[2] += 0.5F;
    const PageStep *step = add_step(&scene);
    ASSERT_EQ(step->plane_count, 1);
    EXPECT_EQ(step->planes[0].reference, 1);
}

TEST(PagePackStep, AFilmOfEvenThicknessIsTheDifferenceFromItsBottom) {
    PageScene scene = start_scene();
    Stack *stack = scene.stack.get();
    Layer *ground = test_layer(stack, SUBSTRATE_MATERIAL, 0, 1);
    raise_part(stack, ground, 0.25F);
    Layer *film = test_layer(stack, "A", 0, 0);
    for (i64 i = 0; i < stack_point_count(stack); ++i) {
        film->bottom[i] = ground->top[i];
        film->top[i] = ground->top[i] + 0.5F;
    }
    const PageStep *step = add_step(&scene);
    ASSERT_EQ(step->plane_count, 3);
    EXPECT_EQ(step->changes[1].bottom, 1);
    EXPECT_EQ(step->planes[2].reference, 1);
}

TEST(PagePackStep, ARemovedFilmIsToldAndItsPlanesAreForgotten) {
    PageScene scene = start_scene();
    test_layer(scene.stack.get(), SUBSTRATE_MATERIAL, 0, 1);
    test_layer(scene.stack.get(), "A", 1, 1.5F);
    test_layer(scene.stack.get(), "B", 1.5F, 2);
    add_step(&scene);
    EXPECT_EQ(scene.page->kept_count, 4);
    test_layer_remove(scene.stack.get(), 1);
    const PageStep *step = add_step(&scene);
    EXPECT_EQ(step->change_count, 0);
    ASSERT_EQ(step->removed_count, 1);
    EXPECT_EQ(step->removed[0], 1);
    // The top of A is the bottom of B.
    EXPECT_EQ(scene.page->kept_count, 4);
    test_layer_remove(scene.stack.get(), 2);
    step = add_step(&scene);
    ASSERT_EQ(step->removed_count, 1);
    EXPECT_EQ(step->removed[0], 2);
    EXPECT_EQ(scene.page->kept_count, 2);

    // A slot behind the others is a film of its own, whatever its name.
    test_layer(scene.stack.get(), "A", 1, 1.5F);
    step = add_step(&scene);
    ASSERT_EQ(step->change_count, 1);
    EXPECT_EQ(step->changes[0].film, 3);
    EXPECT_STREQ(scene.page->films[3].name, "A");
}

TEST(PagePackStep, SlotsThatThePageNeverSawTakeNoNumber) {
    PageScene scene = start_scene();
    test_layer(scene.stack.get(), SUBSTRATE_MATERIAL, 0, 1);
    test_layer(scene.stack.get(), "A", 1, 1.5F);
    test_layer_remove(scene.stack.get(), 1);
    test_layer(scene.stack.get(), "B", 1, 1.5F);
    const PageStep *step = add_step(&scene);
    ASSERT_EQ(step->change_count, 2);
    EXPECT_EQ(step->changes[1].film, 1);
    EXPECT_STREQ(scene.page->films[1].name, "B");
}

TEST(PagePackStep, ChainsOfDifferencesAreNoLongerThanSixteenPlanes) {
    PageScene scene = start_scene();
    Layer *film = test_layer(scene.stack.get(), SUBSTRATE_MATERIAL, 0, 1);
    raise_part(scene.stack.get(), film, 0.25F);
    std::vector<i32> depths;
    for (i32 i = 0; i < 60; ++i) {
        film->top[i % 24] += 0.125F;
        const PageStep *step = add_step(&scene);
        for (i32 k = 0; k < step->plane_count; ++k) {
            const i32 reference = step->planes[k].reference;
            depths.push_back(reference < 0 ? 0 : depths[static_cast<size_t>(reference)] + 1);
            ASSERT_LE(depths.back(), 16);
        }
    }
    EXPECT_EQ(*std::max_element(depths.begin(), depths.end()), 16);
}

// The bytes of a page of two steps, when each allocation of the second one failed before it succeeded.
static std::string written(PageScene *scene) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"page.html");
    wchar_t reason[EXPORT_REASON_SIZE];
    std::FILE *file = platform_file_open(path.c_str(), "wb");
    EXPECT_TRUE(page_writer_write(scene->page.get(), file, reason));
    std::fclose(file);
    return test_file_read(path);
}

TEST(PagePackStep, LackOfMemoryLeavesThePageAsItWas) {
    PageScene scene = start_scene();
    Stack *stack = scene.stack.get();
    Layer *film = test_layer(stack, SUBSTRATE_MATERIAL, 0, 1);
    test_layer(stack, "A", 1, 1.5F);
    add_step(&scene);
    const std::string first = written(&scene);
    raise_part(stack, film, 0.25F);
    test_layer_remove(stack, 1);
    test_layer(stack, "B", 1, 1.25F);

    const i64 blocks = memory_live_blocks();
    PageStep step = {};
    bool complete = false;
    i32 failures = 0;
    while (!complete) {
        ASSERT_LT(failures, 200);
        step = {};
        memory_trip_after(failures);
        complete = page_pack_step(scene.page.get(), stack, &step);
        memory_trip_after(-1);
        if (!complete) {
            page_step_free(&step);
            ASSERT_EQ(memory_live_blocks(), blocks) << failures;
            ASSERT_EQ(written(&scene), first) << failures;
            ++failures;
        }
    }
    // Lists, scratch planes, the packer's own blocks, two names, two planes and their copies, the block.
    EXPECT_GT(failures, 20);
    EXPECT_EQ(step.change_count, 2);
    EXPECT_EQ(step.removed_count, 1);
    page_step_free(&step);
}
