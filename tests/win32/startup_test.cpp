// Start-up: log, window, and every way of failing.
#include <gtest/gtest.h>

#include <algorithm>

#include "app/commands.h"
#include "platform/memory.h"
#include "tests/win32/dialog_driver.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/window_driver.h"

TEST(Startup, LogLinesComeInOrder) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    const std::string log = desktop_log(desktop);
    size_t at = 0;
    for (const char *line :
         {"--- QUARN LOG FILE ---", "Register the main window", "Start creating the main window",
          "Register the render window", "OpenGL Initialized", "Main window created", "Main window shown",
          "Shaders loaded and compiled"}) {
        const size_t found = log.find(std::string(line) + "\r\n", at);
        ASSERT_NE(found, std::string::npos) << line << " is not in its place in\n" << log;
        at = found;
    }
    EXPECT_EQ(log.find("--- QUARN LOG FILE ---\r\nRegister the main window\r\n"), 0U);
}

TEST(Startup, SecondStartTruncatesTheLog) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    EXPECT_NE(desktop_log(desktop).find("Loading GDS file\r\n"), std::string::npos);
    EXPECT_EQ(desktop_close(&desktop), 0);
    SetCurrentDirectoryW(desktop.folder.path.c_str());
    ASSERT_TRUE(desktop_start(&desktop));
    const std::string log = desktop_log(desktop);
    EXPECT_EQ(log.find("Loading GDS file"), std::string::npos);
    EXPECT_EQ(log.find("--- QUARN LOG FILE ---\r\nRegister the main window\r\n"), 0U);
    EXPECT_EQ(log.find("--- QUARN LOG FILE ---", 1), std::string::npos);
}

TEST(Startup, DataFolderIsCreatedWhereItIsMissing) {
    Desktop desktop;
    ASSERT_FALSE(platform_folder_exists(desktop.file(L"local\\Dalvine").c_str()));
    ASSERT_TRUE(desktop_start(&desktop));
    EXPECT_TRUE(test_file_exists(desktop_log_path(desktop)));
}

TEST(Startup, GoesOnWithoutALogFile) {
    Desktop desktop;
    // A folder of the log file's name cannot be written to.
    for (const wchar_t *folder :
         {L"local\\Dalvine", L"local\\Dalvine\\Quarn", L"local\\Dalvine\\Quarn\\log.txt"}) {
        ASSERT_TRUE(CreateDirectoryW(desktop.file(folder).c_str(), nullptr));
    }
    ASSERT_TRUE(desktop_start(&desktop));
    EXPECT_EQ(menu_enabled(desktop), "load about");
}

TEST(Startup, ConsoleTitleAndMenuAtStart) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    EXPECT_EQ(
        console_text(desktop),
        "Select menu \"Load GDS\" to load a GDS database and then menu \"Run Process\" to run a process "
        "file\r\n\r\n");
    EXPECT_EQ(window_text(desktop.main), "Quarn");
    EXPECT_EQ(menu_enabled(desktop), "load about");
    EXPECT_TRUE(IsWindowVisible(desktop.main));
}

// Screens.

static int screen_width, screen_height;
static decltype(GetSystemMetrics) *metrics_original;

static int WINAPI screen_metrics(int index) {
    return index == SM_CXSCREEN   ? screen_width
           : index == SM_CYSCREEN ? screen_height
                                  : metrics_original(index);
}

struct WindowPlace {
    i32 dots_per_inch;
    int screen_width, screen_height;
    int x, y, width, height;
};

class StartupScreen : public testing::TestWithParam<WindowPlace> {};

TEST_P(StartupScreen, WindowFitsAndIsCentred) {
    const WindowPlace &place = GetParam();
    Desktop desktop;
    desktop_redirect_scale(place.dots_per_inch);
    screen_width = place.screen_width;
    screen_height = place.screen_height;
    metrics_original = import_replace("GetSystemMetrics", screen_metrics);
    static CREATESTRUCTW seen;
    static decltype(CreateWindowExW) *create_original;
    create_original = import_replace<decltype(CreateWindowExW)>(
        "CreateWindowExW",
        [](DWORD ex_style, LPCWSTR name, LPCWSTR title, DWORD style, int x, int y, int width, int height,
           HWND parent, HMENU menu, HINSTANCE instance, LPVOID argument) -> HWND {
            if (reinterpret_cast<u64>(name) > 0xFFFF && std::wcscmp(name, L"MainClass") == 0) {
                seen = {argument, instance, menu,    parent, height, width, y, x, static_cast<LONG>(style),
                        title,    name,     ex_style};
            }
            return create_original(ex_style, name, title, style, x, y, width, height, parent, menu, instance,
                                   argument);
        });
    ASSERT_TRUE(desktop_start(&desktop));
    EXPECT_EQ(place.x, seen.x);
    EXPECT_EQ(place.y, seen.y);
    EXPECT_EQ(place.width, seen.cx);
    EXPECT_EQ(place.height, seen.cy);
    EXPECT_EQ(seen.style, static_cast<LONG>(WS_SYSMENU | WS_MINIMIZEBOX));
    EXPECT_EQ(seen.dwExStyle, 0U);
    EXPECT_EQ(seen.hwndParent, nullptr);
    EXPECT_EQ(seen.hMenu, nullptr);
    EXPECT_EQ(seen.lpszName, nullptr);
    EXPECT_EQ(g_app, seen.lpCreateParams);
}

INSTANTIATE_TEST_SUITE_P(Sizes, StartupScreen,
                         testing::Values(WindowPlace{96, 1600, 1000, 200, 100, 1200, 800},
                                         WindowPlace{96, 1200, 800, 0, 0, 1200, 800},
                                         WindowPlace{96, 1024, 600, 0, 0, 1024, 600},
                                         WindowPlace{96, 1920, 600, 360, 0, 1200, 600},
                                         WindowPlace{96, 1025, 1081, 0, 140, 1025, 800},
                                         WindowPlace{144, 3840, 2160, 1020, 480, 1800, 1200},
                                         WindowPlace{144, 1920, 1080, 60, 0, 1800, 1080},
                                         WindowPlace{192, 3840, 2160, 720, 280, 2400, 1600},
                                         WindowPlace{192, 1920, 1080, 0, 0, 1920, 1080}));

TEST(Startup, WindowIsCentredOnThisScreen) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    const int whole_width = GetSystemMetrics(SM_CXSCREEN);
    const int whole_height = GetSystemMetrics(SM_CYSCREEN);
    const int width = std::min(whole_width, screen_scaled(1200));
    const int height = std::min(whole_height, screen_scaled(800));
    RECT window = {};
    GetWindowRect(desktop.main, &window);
    EXPECT_EQ(width, window.right - window.left);
    EXPECT_EQ(height, window.bottom - window.top);
    // The window manager may shift the window by the width of its frame.
    EXPECT_NEAR((whole_width - width) / 2, window.left, 30);
    EXPECT_NEAR((whole_height - height) / 2, window.top, 30);
}

// Shaders.

struct ShaderFault {
    const char *name;
    const wchar_t *file;
    const char *content;  // null: the file is missing
};

class StartupShader : public testing::TestWithParam<ShaderFault> {};

TEST_P(StartupShader, FaultIsOnlyToldOnTheConsole) {
    Desktop desktop;
    const std::wstring path = desktop.file(GetParam().file);
    if (GetParam().content == nullptr) {
        ASSERT_TRUE(DeleteFileW(path.c_str()));
    } else {
        test_file_write(path, GetParam().content);
    }
    ASSERT_TRUE(desktop_start(&desktop));
    const std::string console = console_text(desktop);
    const size_t welcome = console.find("Select menu");
    ASSERT_NE(welcome, std::string::npos);
    EXPECT_GT(welcome, 0U) << "nothing tells of the fault";
    EXPECT_NE(desktop_log(desktop).find("Shaders loaded and compiled\r\n"), std::string::npos);
    EXPECT_EQ(menu_enabled(desktop), "load about");
    // A run without a shader must still come to its end.
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"p.txt", depositions(1))));
    EXPECT_EQ(g_app->image_count, 2);
}

static const ShaderFault SHADER_FAULTS[] = {
    {"SurfaceMissing", L"surface.shader", nullptr},
    {"PointMissing", L"point.shader", nullptr},
    {"SurfaceBroken", L"surface.shader", "no shader at all\n"},
    {"PointEmpty", L"point.shader", ""},
};

INSTANTIATE_TEST_SUITE_P(Each, StartupShader, testing::ValuesIn(SHADER_FAULTS),
                         [](const auto &fault) { return std::string(fault.param.name); });
