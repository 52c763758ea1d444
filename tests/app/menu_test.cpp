#include <gtest/gtest.h>

#include "app/commands.h"
#include "platform/memory.h"
#include "tests/app/test_frontend.h"

struct MenuCase {
    const char *name;
    bool layout;
    i32 image_count;
    i32 running;
    i32 stop_requested;
    // expected
    bool save, run, stop, load;
};

static const MenuCase MENU_CASES[] = {
    {"idle without anything", false, 0, 0, 0, false, false, false, true},
    {"layout loaded", true, 0, 0, 0, false, true, false, true},
    {"running, no picture yet", true, 0, 1, 0, false, false, true, false},
    {"running with pictures", true, 3, 1, 0, false, false, true, false},
    {"stopping", true, 3, 1, 1, false, false, false, false},
    {"run done", true, 3, 0, 0, true, true, false, true},
    {"run stopped", true, 1, 0, 1, true, true, false, true},
    {"pictures without a layout", false, 1, 0, 0, true, false, false, true},
};

TEST(MenuUpdate, FollowsTheStateOfTheProgram) {
    for (const MenuCase &c : MENU_CASES) {
        const TestFrontEnd front;
        AppState state = {};
        state.frontend = &TEST_FRONTEND;
        GdsDatabase layout = {};
        state.layout = c.layout ? &layout : nullptr;
        state.image_count = c.image_count;
        state.running = c.running;
        state.stop_requested = c.stop_requested;
        menu_update(&state);
        const std::map<i32, bool> expected = {{MENU_SAVE_IMAGES, c.save},
                                              {MENU_RUN, c.run},
                                              {MENU_STOP, c.stop},
                                              {MENU_LOAD_GDS, c.load},
                                              {MENU_ABOUT, true}};
        EXPECT_EQ(front.menu(), expected) << c.name;
        EXPECT_EQ(front.calls().back(), "redraw") << "the menu bar is redrawn once all items are set";
    }
}

TEST(MenuDisableAll, GreysAllButAbout) {
    TestFrontEnd front;
    menu_disable_all(&front.state);
    const std::map<i32, bool> expected = {
        {MENU_SAVE_IMAGES, false}, {MENU_RUN, false}, {MENU_STOP, false}, {MENU_LOAD_GDS, false}};
    EXPECT_EQ(front.menu(), expected);
    EXPECT_EQ(front.calls().back(), "redraw");
}
