// The scale that the user has chosen for the screen: everything in the window grows alike, and pictures stay
// as they are.
#include <commctrl.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "image/image_pack.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/window_driver.h"

struct ScaledParts {
    i32 dots_per_inch;
    LONG console_font, status_font;
    std::vector<INT> status_edges;
    int icon, small_icon;  // sides
};

class Scale : public testing::TestWithParam<ScaledParts> {};

static std::vector<SIZE> icons_asked_for;
static decltype(LoadImageW) *load_image_original;

static HANDLE WINAPI load_image_watched(HINSTANCE instance, LPCWSTR name, UINT type, int width, int height,
                                        UINT flags) {
    if (type == IMAGE_ICON) {
        icons_asked_for.push_back({width, height});
    }
    return load_image_original(instance, name, type, width, height, flags);
}

static LONG font_height(HWND window) {
    LOGFONTW font = {};
    GetObjectW(reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)), sizeof(font), &font);
    return font.lfHeight;
}

TEST_P(Scale, FontsFieldsAndIconsGrow) {
    Desktop desktop;
    desktop_redirect_scale(GetParam().dots_per_inch);
    load_image_original = import_replace("LoadImageW", load_image_watched);
    ASSERT_TRUE(desktop_start(&desktop));
    EXPECT_EQ(font_height(desktop.console), GetParam().console_font);
    EXPECT_EQ(font_height(desktop.status), GetParam().status_font);
    INT edges[8] = {};
    ASSERT_EQ(SendMessageW(desktop.status, SB_GETPARTS, 8, reinterpret_cast<LPARAM>(edges)), 4);
    EXPECT_EQ(std::vector<INT>(edges, edges + 4), GetParam().status_edges);
    ASSERT_EQ(icons_asked_for.size(), 2U);
    EXPECT_EQ(icons_asked_for[0].cx, GetParam().icon);
    EXPECT_EQ(icons_asked_for[0].cy, GetParam().icon);
    EXPECT_EQ(icons_asked_for[1].cx, GetParam().small_icon);
    EXPECT_EQ(icons_asked_for[1].cy, GetParam().small_icon);
}

// The status bar is as high as its font needs: 11 pixels at 100 %.
TEST_P(Scale, StatusBarHasRoomForItsText) {
    Desktop desktop;
    desktop_redirect_scale(GetParam().dots_per_inch);
    ASSERT_TRUE(desktop_start(&desktop));
    RECT bar = {};
    GetClientRect(desktop.status, &bar);
    EXPECT_GE(bar.bottom, GetParam().status_font);
    EXPECT_LE(bar.bottom, GetParam().status_font * 3);
}

// 14 x 1.5 is 21 and 11 x 1.5 is 16.5, which is rounded up; 14 x 1.25 is 17.5, rounded up, and 11
// x 1.25 13.75.
INSTANTIATE_TEST_SUITE_P(Each, Scale,
                         testing::Values(ScaledParts{96, 14, 11, {80, 600, 680, 1200}, 32, 16},
                                         ScaledParts{120, 18, 14, {100, 750, 850, 1500}, 40, 20},
                                         ScaledParts{144, 21, 17, {120, 900, 1020, 1800}, 48, 24},
                                         ScaledParts{192, 28, 22, {160, 1200, 1360, 2400}, 64, 32}),
                         [](const auto &parts) { return std::to_string(parts.param.dots_per_inch); });

// All pictures of a run, one after another.
static std::vector<u8> pictures_of_a_run(i32 dots_per_inch) {
    Desktop desktop;
    desktop_redirect_scale(dots_per_inch);
    std::vector<u8> bytes;
    EXPECT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)) &&
                run_process(&desktop, write_process(desktop, L"p.txt", depositions(2))));
    EXPECT_EQ(g_app->image_count, 3);
    for (i32 i = 0; i < g_app->image_count; ++i) {
        const Owned<PixelImage> image(image_unpack(g_app->images[i]));
        EXPECT_EQ(image->width, 1920);
        bytes.insert(bytes.end(), image->pixels, image->pixels + i64{image->width} * image->height * 4);
    }
    EXPECT_EQ(desktop_close(&desktop), 0);
    return bytes;
}

TEST(ScalePictures, AreTheSameAtEveryScale) {
    const std::vector<u8> plain = pictures_of_a_run(96);
    const std::vector<u8> large = pictures_of_a_run(192);
    ASSERT_FALSE(plain.empty());
    EXPECT_TRUE(plain == large);
}

// In a session whose screen has the scale that QUARN_TEST_DPI names: what the program asks the system for is
// that scale, since the manifest says that it can deal with it, and the real window has the size that
// follows.
TEST(ScaleOfTheScreen, IsTheWindows) {
    const char *dots_per_inch = std::getenv("QUARN_TEST_DPI");
    if (dots_per_inch == nullptr) {
        GTEST_SKIP() << "QUARN_TEST_DPI does not say what the screen's scale is";
    }
    EXPECT_EQ(screen_scaled(96), std::atoi(dots_per_inch));
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    EXPECT_EQ(font_height(desktop.console), screen_scaled(14));
    RECT window = {};
    GetWindowRect(desktop.main, &window);
    EXPECT_EQ(window.right - window.left, screen_scaled(1200));
    EXPECT_EQ(window.bottom - window.top, screen_scaled(800));
}
