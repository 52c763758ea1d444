// The divider between picture and console, and where it is at the next start.
#include "tests/gtk/window_driver.h"

// The parts' heights, and that of all of them with what lies between.
struct Heights {
    i32 render, console, inside;
};

static bool operator==(const Heights &a, const Heights &b) {
    return a.render == b.render && a.console == b.console && a.inside == b.inside;
}

static std::ostream &operator<<(std::ostream &out, const Heights &heights) {
    return out << heights.render << " and " << heights.console << " of " << heights.inside;
}

static Heights part_heights(const WindowProgram &window) {
    const ScreenBox render = accessible_box(window_part(window, "Cross section"));
    const ScreenBox console = accessible_box(window_part(window, "Console"));
    const ScreenBox status = accessible_box(window_part(window, "Status bar"));
    return {render.height, console.height, status.y + status.height - render.y};
}

static i32 sixty_percent(i32 inside) {
    return static_cast<i32>(static_cast<f32>(inside) * 0.6F);
}

static std::wstring settings_file(const WindowProgram &window) {
    return window.files.scratch.file(L"data/Dalvine/Quarn/window.ini");
}

static void drag_divider(const WindowProgram &window, i32 by) {
    const ScreenBox render = accessible_box(window_part(window, "Cross section"));
    const i32 x = render.x + render.width / 2;
    const i32 y = render.y + render.height;
    screen_drag(x, y, x, y + by);
}

TEST(Divider, GivesThePictureSixtyPercentAtFirst) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    Heights heights = part_heights(window);
    EXPECT_EQ(sixty_percent(heights.inside), heights.render);
    u64 id = program_window(window);
    screen_move_resize(id, {40, 40, 900, 610});
    EXPECT_SOON(610, screen_window_box(id).height);
    auto share_kept = [&] {
        const Heights now = part_heights(window);
        return now.inside < heights.inside && now.render == sixty_percent(now.inside);
    };
    EXPECT_SOON(true, share_kept()) << testing::PrintToString(part_heights(window));
    program_close(&window);
    EXPECT_FALSE(test_file_exists(settings_file(window))) << "what nobody has changed is not kept";
}

TEST(Divider, IsMovedByTheMouseAndRemembered) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    Heights before = part_heights(window);
    drag_divider(window, 120);
    auto moved = [&] { return part_heights(window).render - before.render; };
    EXPECT_SOON(true, moved() > 100 && moved() < 140) << moved();
    const Heights after = part_heights(window);
    EXPECT_EQ(before.render + before.console, after.render + after.console);
    program_close(&window);
    for (i32 start = 0; start < 2; ++start) {
        ASSERT_TRUE(program_open(&window));
        EXPECT_SOON(after, part_heights(window));
        program_close(&window);
    }
}

// The share stays when the window gets another height, and the user goes on from there.
TEST(Divider, KeepsItsShareInAnotherWindow) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    drag_divider(window, -200);
    Heights before = part_heights(window);
    auto share = [&](const Heights &heights) { return heights.render * 1000 / heights.inside; };
    EXPECT_SOON(true, (before = part_heights(window), share(before) < 400)) << share(before);
    const u64 id = program_window(window);
    screen_move_resize(id, {40, 40, 900, 610});
    EXPECT_SOON(true, part_heights(window).inside < before.inside);
    EXPECT_SOON(true, std::abs(share(part_heights(window)) - share(before)) <= 2) << share(before);
    program_close(&window);
}

TEST(Divider, ItsFileMayHoldAnything) {
    NEEDS_WINDOW();
    for (const char *text :
         {"\xFF\xFE\x00garbage", "[window]\nrender-share=much\n", "[window]\nrender-share=nan\n",
          "[window]\nrender-share=-3\n", "[window]\nrender-share=1e99\n"}) {
        WindowProgram window;
        ASSERT_TRUE(program_open(&window));
        program_close(&window);
        test_file_write(settings_file(window), text);
        ASSERT_TRUE(program_open(&window));
        const Heights heights = part_heights(window);
        EXPECT_EQ(sixty_percent(heights.inside), heights.render) << text;
        program_close(&window);
    }
}
