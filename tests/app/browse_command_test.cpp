#include <gtest/gtest.h>

#include "app/commands.h"
#include "platform/memory.h"
#include "tests/app/test_frontend.h"

static void add_pictures(AppState *state, i32 count) {
    for (i32 i = 0; i < count; ++i) {
        i32 filled = state->image_count;
        const std::wstring title = L"picture " + std::to_wstring(i);
        array_append(&state->images, &filled, &state->image_capacity, image_create(1, 1, title.c_str()));
        state->image_count = filled;
    }
}

struct BrowseCase {
    i32 count, current, direction;
    i32 expected;
};

static const BrowseCase BROWSE_CASES[] = {
    {1, 0, 1, 0},  {1, 0, -1, 0},   // a single picture stays
    {3, 0, 1, 1},  {3, 2, -1, 1},   // to the neighbour
    {3, 1, 1, 2},  {3, 1, -1, 0},   //
    {3, 2, 1, 0},  {3, 0, -1, 2},   // around the ends
    {3, 5, 1, 0},  {3, 5, -1, 2},   // an index of a longer run before
    {3, -1, 1, 0}, {3, -1, -1, 2},  // and one below all
};

TEST(BrowseImages, WrapsAtBothEnds) {
    for (const BrowseCase &c : BROWSE_CASES) {
        TestFrontEnd front;
        add_pictures(&front.state, c.count);
        front.state.current_image = c.current;
        EXPECT_EQ(browse_images(&front.state, c.direction), 1);
        EXPECT_EQ(front.state.current_image, c.expected)
            << "from " << c.current << " of " << c.count << " by " << c.direction;
        EXPECT_EQ(front.title(), "picture " + std::to_string(c.expected));
    }
}

TEST(BrowseImages, NothingHappensWithoutPictures) {
    TestFrontEnd front;
    for (const i32 direction : {-1, 1}) {
        EXPECT_EQ(browse_images(&front.state, direction), 0);
        EXPECT_EQ(front.state.current_image, 0);
    }
    EXPECT_TRUE(front.calls().empty());
}
