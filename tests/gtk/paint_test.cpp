// What is on the screen while a layout is being read, when the program answers nobody.
#include "tests/gds/gds_bytes.h"
#include "tests/gtk/window_driver.h"

// Takes a while to read.
static std::string big_layout() {
    GdsBytes bytes;
    bytes.head().begin("TOP");
    for (i32 i = 0; i < 400'000; ++i) {
        bytes.box(1, i, 0, i + 10, 10);
    }
    return bytes.end().close().bytes;
}

// Where texts lie in a window that has just been started; another one lies at the same place.
struct Places {
    ScreenBox line;  // the first one of the console, without the place of the text cursor
    ScreenBox item;  // "Load GDS" in the menu
};

static Places places_of(const WindowProgram &window) {
    const Accessible console = window_part(window, "Console");
    ScreenBox first = accessible_character_box(console, 0);
    const ScreenBox box = accessible_box(console);
    return {{first.x + 4, first.y, box.width / 2, first.height},
            accessible_box(window_part(window, "Load GDS"))};
}

static constexpr i32 LINE_COUNT = 5;

// Which of the console's first lines have letters, at one moment: "x" for those, "." for the others.
static std::string lines_with_ink(const Places &places) {
    ScreenPicture seen =
        screen_grab({places.line.x, places.line.y, places.line.width, places.line.height * LINE_COUNT});
    const size_t line_size = seen.pixels.size() / LINE_COUNT;
    std::string lines;
    for (size_t line = 0; line < LINE_COUNT; ++line) {
        auto begin = seen.pixels.begin() + static_cast<std::ptrdiff_t>(line * line_size);
        auto differs = [&](u32 pixel) { return pixel != *begin; };
        lines += std::any_of(begin, begin + static_cast<std::ptrdiff_t>(line_size), differs) ? "x" : ".";
    }
    return lines;
}

// The lines: the banner, a blank one, "Loading GDS database", a blank one, and then what has been read. While
// that is missing the program is still reading.
static const char *const READING = "x.x..";
static const char *const READ = "x.x.x";

static void expect_wait_line(const Places &places, const ScreenPicture &idle_item) {
    const std::string lines = wait_for_value<std::string>(READING, [&] { return lines_with_ink(places); });
    const bool greyed = screen_grab(places.item).pixels != idle_item.pixels;
    EXPECT_EQ(lines, READING);
    EXPECT_EQ(lines_with_ink(places), READING) << "the layout is too small to be caught reading";
    EXPECT_TRUE(greyed);
}

TEST(PleaseWait, IsOnTheScreenWhileALayoutIsRead) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("big.gds", big_layout());
    ASSERT_TRUE(program_open(&window));
    Places places = places_of(window);
    screen_pointer(0, 0);
    const ScreenPicture idle_item = screen_grab(places.item);
    EXPECT_EQ(window_drop(window, {window.files.path("big.gds")}), DROP_DONE);
    expect_wait_line(places, idle_item);
    EXPECT_SOON(MENU_LOADED, window_menu(window));
    EXPECT_SOON(READ, lines_with_ink(places));
    program_close(&window);
    program_launch(&window, {{"big.gds"}});  // the same by the command line
    expect_wait_line(places, idle_item);
    ASSERT_TRUE(program_connect(&window));
    EXPECT_SOON(MENU_LOADED, window_menu(window));
    program_close(&window);
}

// The window closed while the layout is read: it goes when that is there.
TEST(PleaseWait, TheWindowCanBeClosedMeanwhile) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("big.gds", big_layout());
    ASSERT_TRUE(program_open(&window));
    Places places = places_of(window);
    EXPECT_EQ(window_drop(window, {window.files.path("big.gds")}), DROP_DONE);
    EXPECT_SOON(READING, lines_with_ink(places));
    program_close(&window);
}
