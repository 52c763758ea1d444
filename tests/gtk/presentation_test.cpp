// What the screen shows: the picture in the render area, the console, and their colours.
#include "app/presentation.h"

#include <cmath>
#include <cstring>
#include <map>

#include "image/image_on_white.h"
#include "image/image_smooth.h"
#include "tests/gtk/window_driver.h"

static constexpr u32 WHITE = 0xFFFFFF;

// The picture in a saved file; freed with image_free. The header is 54 bytes, width and height at 18 and 22.
static Owned<PixelImage> read_bmp(const std::string &bytes) {
    const size_t header = 54;
    i32 size[2] = {};
    std::memcpy(size, bytes.data() + 18, sizeof size);
    Owned<PixelImage> image(image_create(size[0], size[1], L""));
    EXPECT_EQ(bytes.size(), header + static_cast<size_t>(size[0]) * static_cast<size_t>(size[1]) * 4);
    std::memcpy(image->pixels, bytes.data() + header, bytes.size() - header);
    return image;
}

// What a render area of this size shows of a picture, on white.
static ScreenPicture presented(const PixelImage *image, i32 width, i32 height) {
    const PicturePlace place = picture_place(image->width, image->height, width, height);
    const Owned<PixelImage> opaque(image_scale(image, 1.0F));
    image_lay_on_white(opaque.get());
    const Owned<PixelImage> scaled(place.scale < 1.0F ? image_scale_smooth(opaque.get(), place.scale)
                                                      : image_scale(opaque.get(), place.scale));
    ScreenPicture shown = {width, height, std::vector<u32>(static_cast<size_t>(i64{width} * height), WHITE)};
    for (i32 row = 0; row < scaled->height; ++row) {
        for (i32 column = 0; column < scaled->width; ++column) {
            const u8 *pixel = scaled->pixels + (i64{row} * scaled->width + column) * 4;
            const i32 y = height - 1 - (place.y + row);
            shown.pixels[static_cast<size_t>(i64{y} * width + place.x + column)] =
                static_cast<u32>(pixel[2] << 16 | pixel[1] << 8 | pixel[0]);
        }
    }
    return shown;
}

// The render area on the screen, which has `scale` pixels for one of the window in each direction.
static ScreenBox render_box(const WindowProgram &window, i32 scale) {
    std::vector<u64> windows = screen_windows(window.run.process);
    const ScreenBox outer = windows.empty() ? ScreenBox{} : screen_window_box(windows[0]);
    const ScreenBox box = accessible_box_in_window(window_part(window, "Cross section"));
    return {outer.x + box.x * scale, outer.y + box.y * scale, box.width * scale, box.height * scale};
}

static i32 wrong_pixels(const WindowProgram &window, const PixelImage *image, i32 scale) {
    const ScreenBox box = render_box(window, scale);
    ScreenPicture expected = presented(image, box.width, box.height);
    ScreenPicture seen = screen_grab(box);
    if (seen.pixels.size() != expected.pixels.size()) {
        return -1;
    }
    i32 wrong = 0;
    for (size_t i = 0; i < seen.pixels.size(); ++i) {
        wrong += seen.pixels[i] == expected.pixels[i] ? 0 : 1;
    }
    return wrong;
}

// The first picture of a run without a window.
static Owned<PixelImage> reference_picture(const WindowProgram &window, const std::string &name) {
    const ProgramResult result = window.files.run({"-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    return read_bmp(window.files.read("out/" + name));
}

TEST(RenderArea, WhiteWithoutAPicture) {
    NEEDS_WINDOW();
    for (const char *theme : {"GTK_THEME=Adwaita", "GTK_THEME=Adwaita:dark"}) {
        WindowProgram window;
        ASSERT_TRUE(program_open(&window, {{}, {theme}}));
        auto is_white = [&] {
            const std::vector<u32> pixels = screen_grab(render_box(window, 1)).pixels;
            return !pixels.empty() && pixels == std::vector<u32>(pixels.size(), WHITE);
        };
        EXPECT_SOON(true, is_white()) << theme;
        program_close(&window);
    }
}

// A translucent film over one of another colour: its alpha is kept in the saved file, and lets the white
// ground through on the screen.
TEST(RenderArea, LaysATranslucentPictureOnWhite) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write(
        "p.txt",
        process_text("deposition -name A -type t -thickness 500 -sc 0 -color 0 0 255 100 -alpha 0.5\n"));
    const Owned<PixelImage> image = reference_picture(window, "001 Cross section after A deposition.bmp");
    i32 translucent = 0;
    for (i32 i = 0; i < image->width * image->height; ++i) {
        translucent += image->pixels[i * 4 + 3] < 250 ? 1 : 0;
    }
    EXPECT_LT(10'000, translucent) << "the test needs such a picture";
    ASSERT_TRUE(program_open(&window, {{"a.gds", "p.txt"}}));
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    EXPECT_SOON(0, wrong_pixels(window, image.get(), 1));
    program_close(&window);
}

// Wide, tall and usual windows, and a screen with two pixels for one.
TEST(RenderArea, ShowsThePictureScaledAndCentred) {
    NEEDS_WINDOW();
    const struct {
        i32 scale;
        ScreenBox window;  // no size: as it comes
    } cases[] = {{1, {}}, {1, {50, 50, 700, 900}}, {1, {20, 60, 1500, 460}}, {2, {}}};
    for (const auto &shown : cases) {
        WindowProgram window;
        window.files.write("p.txt", process_text(deposition_line("A")));
        const Owned<PixelImage> image = reference_picture(window, "001 Cross section after A deposition.bmp");
        ASSERT_TRUE(
            program_open(&window, {{"a.gds", "p.txt"}, {"GDK_SCALE=" + std::to_string(shown.scale)}}));
        if (shown.window.width > 0) {
            u64 id = program_window(window);
            screen_move_resize(id, shown.window);
            EXPECT_SOON(shown.window.width, screen_window_box(id).width);
            EXPECT_SOON(shown.window.height, screen_window_box(id).height);
        }
        ASSERT_TRUE(window_run_done(window)) << program_report(window);
        EXPECT_SOON(0, wrong_pixels(window, image.get(), shown.scale))
            << shown.scale << " " << shown.window.width;
        program_close(&window);
    }
}

TEST(RenderArea, FollowsTheArrows) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("p.txt", process_text(deposition_line("A")));
    const Owned<PixelImage> image = reference_picture(window, "000 The substrate.bmp");
    ASSERT_TRUE(program_open(&window, {{"a.gds", "p.txt"}}));
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    EXPECT_NE(wrong_pixels(window, image.get(), 1), 0);
    window_key(window, "Left");
    EXPECT_SOON(0, wrong_pixels(window, image.get(), 1));
    program_close(&window);
}

// The console shows its last line, and the wheel moves it from the render area too.
TEST(Console, ScrollsToItsEndAndByTheWheel) {
    NEEDS_WINDOW();
    WindowProgram window;
    std::string steps;
    for (i32 i = 0; i < 200; ++i) {
        steps += "nonsense\n";
    }
    window.files.write("p.txt", process_text(steps));
    ASSERT_TRUE(program_open(&window, {{"a.gds", "p.txt"}}));
    ASSERT_SOON(true, window_console_has(window, "Run process canceled\n\n"));
    Accessible console = window_part(window, "Console");
    ScreenBox box = accessible_box(console);
    auto text_end = static_cast<i32>(window_console(window).size()) - 1;
    auto last_line_shows = [&] {
        const ScreenBox last = accessible_character_box(console, text_end);
        return last.height > 0 && last.y >= box.y && last.y + last.height <= box.y + box.height;
    };
    EXPECT_SOON(true, last_line_shows());
    const ScreenBox render = render_box(window, 1);
    screen_wheel(render.x + render.width / 2, render.y + render.height / 2, -20);
    EXPECT_SOON(false, last_line_shows()) << "the wheel turned up";
    screen_wheel(render.x + render.width / 2, render.y + render.height / 2, 40);
    EXPECT_SOON(true, last_line_shows()) << "and down";
    program_close(&window);
}

static f64 luminance(u32 color) {
    auto part = [](u32 value) {
        const f64 share = static_cast<f64>(value & 0xFFU) / 255.0;
        return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(color >> 16) + 0.7152 * part(color >> 8) + 0.0722 * part(color);
}

// The contrast between the ground (the commonest colour) and what differs most from it, as readers with weak
// eyes are helped by: 1 for none, 21 for black on white.
static f64 contrast(const ScreenPicture &picture) {
    std::map<u32, i32> counts;
    for (const u32 pixel : picture.pixels) {
        ++counts[pixel];
    }
    u32 ground = 0;
    for (const auto &color : counts) {
        ground = color.second > counts[ground] ? color.first : ground;
    }
    f64 most = 1;
    for (const auto &color : counts) {
        const f64 a = luminance(color.first) + 0.05;
        const f64 b = luminance(ground) + 0.05;
        most = std::max(most, std::max(a / b, b / a));
    }
    return most;
}

TEST(Themes, TextsCanBeReadInAll) {
    NEEDS_WINDOW();
    for (const char *theme : {"Adwaita", "Adwaita:dark", "HighContrast", "HighContrastInverse"}) {
        WindowProgram window;
        ASSERT_TRUE(program_open(&window, {{}, {std::string("GTK_THEME=") + theme}}));
        for (const char *part : {"Console", "Status bar", "Load GDS"}) {
            const ScreenBox box = accessible_box(window_part(window, part));
            // Its inside, without a frame's line.
            ScreenBox inside = {box.x + 4, box.y + 3, box.width - 8, box.height - 6};
            EXPECT_SOON(true, contrast(screen_grab(inside)) >= 4.5) << theme << ", " << part;
        }
        program_close(&window);
    }
}
