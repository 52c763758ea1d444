// "Save images": files, messages, failures.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "app/commands.h"
#include "gds/gds_read.h"
#include "image/image_pack.h"
#include "platform/memory.h"
#include "tests/app/app_scene.h"
#include "tests/win32/dialog_driver.h"

#include "tests/win32/import_patch.h"
#include "tests/win32/window_driver.h"

// A clock that stands still, so that folder names are known.
static void WINAPI fixed_time(LPSYSTEMTIME time) {
    *time = {2024, 5, 3, 1, 13, 45, 10, 0};
}

static const wchar_t *const FOLDER = L"work\\cmos.v2 2024-05-01 13-45-10";

// A program after a run of "work\cmos.v2.txt" with that many steps beside the substrate.
struct RunDesktop : Desktop {
    bool ready;

    explicit RunDesktop(i32 steps) {
        import_replace("GetLocalTime", fixed_time);
        CreateDirectoryW(file(L"work").c_str(), nullptr);
        ready = desktop_start(this) && load_layout(this, write_layout(*this)) &&
                run_process(this, write_process(*this, L"work\\cmos.v2.txt", depositions(steps)));
    }

    std::wstring saved(const std::wstring &name = L"") const {
        return file(std::wstring(FOLDER) + (name.empty() ? L"" : L"\\") + name);
    }
};

// What the console says since the last save began.
static std::string save_text(const Desktop &desktop) {
    const std::string shown = console_text(desktop);
    const size_t at = shown.rfind("--- Handling \"Save images\" command ---");
    return at == std::string::npos ? "" : shown.substr(at);
}

static void save(const Desktop &desktop) {
    menu_choose(desktop, MENU_SAVE_IMAGES);
    desktop_settle(desktop);
}

TEST(SaveImages, NamesTextsAndMenu) {
    const RunDesktop desktop(2);
    ASSERT_TRUE(desktop.ready);
    save(desktop);
    EXPECT_EQ(
        test_folder_list(desktop.saved()),
        (std::vector<std::wstring>{L"000 The substrate.bmp", L"001 Cross section after D1 deposition.bmp",
                                   L"002 Cross section after D2 deposition.bmp", L"Polygon.gds"}));
    EXPECT_EQ(save_text(desktop),
              "--- Handling \"Save images\" command ---\r\nSaving images to folder \"" +
                  test_utf8(desktop.saved()) +
                  "\". Please wait ...\r\nSaving images completed\r\n"
                  "Saved polygons to \"Polygons.gds\" in the image output directory\r\n\r\n");
    EXPECT_FALSE(message_box_is_up());
    EXPECT_EQ(menu_enabled(desktop), "save run load about");
    EXPECT_NE(desktop_log(desktop).find("Saving images\r\n"), std::string::npos);
    EXPECT_NE(console_text(desktop).find("Executing D1"), std::string::npos) << "nothing is cleared";
}

static u32 little_endian(const std::string &bytes, size_t at, i32 count) {
    u32 value = 0;
    for (i32 i = count - 1; i >= 0; --i) {
        value = (value << 8) | static_cast<u8>(bytes[at + static_cast<size_t>(i)]);
    }
    return value;
}

TEST(SaveImages, BytesOfABmp) {
    const RunDesktop desktop(1);
    ASSERT_TRUE(desktop.ready);
    save(desktop);
    std::string bytes = test_file_read(desktop.saved(L"001 Cross section after D1 deposition.bmp"));
    const PixelImage *image = g_app->images[1];
    auto width = static_cast<u32>(image->width);
    auto height = static_cast<u32>(image->height);
    EXPECT_EQ(width, 1920U);
    ASSERT_EQ(size_t{width} * height * 4 + 54, bytes.size());
    const struct {
        size_t at;
        i32 size;
        u32 value;
    } fields[] = {
        // clang-format off
        {0, 2, 0x4D42},
        {2, 4, width * height * 4 + 54},
        {6, 2, 0},
        {8, 2, 0},
        {10, 4, 54},
        {14, 4, 40},
        {18, 4, width},
        {22, 4, height},
        {26, 2, 1},
        {28, 2, 32},
        {30, 4, 0},
        {34, 4, 0},
        {38, 4, 0},
        {42, 4, 0},
        {46, 4, 0},
        {50, 4, 0},
        // clang-format on
    };
    for (const auto &field : fields) {
        EXPECT_EQ(little_endian(bytes, field.at, field.size), field.value) << "at byte " << field.at;
    }
    const Owned<PixelImage> unpacked(image_unpack(image));
    EXPECT_EQ(std::memcmp(bytes.data() + 54, unpacked->pixels, bytes.size() - 54), 0);
}

TEST(SaveImages, PolygonsLoadAgainAsOneCell) {
    RunDesktop desktop(0);
    ASSERT_TRUE(desktop.ready);
    save(desktop);
    const std::wstring polygons = desktop.saved(L"Polygon.gds");
    ASSERT_TRUE(load_layout(&desktop, polygons));
    EXPECT_EQ(status_text(desktop, 1), test_utf8(polygons));
    ASSERT_EQ(g_app->layout->cell_count, 1);
    EXPECT_NE(console_text(desktop).find("\"TOP\""), std::string::npos) << console_text(desktop);
    // The rectangle over the left half of the cut.
    ASSERT_EQ(g_app->layout->cells[0].polygon_count, 1);
}

// A save that ends with a message box, which is also on the console.
static void expect_refusal(const Desktop &desktop, const std::string &message, const std::string &before) {
    menu_choose(desktop, MENU_SAVE_IMAGES);
    const MessageBoxSeen box = message_box_wait();
    EXPECT_EQ(box.caption, "Quarn");
    EXPECT_EQ(box.text, message);
    EXPECT_EQ(desktop.main, box.owner);
    EXPECT_EQ(menu_enabled(desktop), "about") << "while the box is up";
    message_box_press_ok(box);
    folder_dialog_cancel([&] { return menu_enabled(desktop) == "save run load about"; });
    desktop_settle(desktop);
    const std::string shown = save_text(desktop);
    EXPECT_EQ(without_notes(shown),
              "--- Handling \"Save images\" command ---\r\n" + before + message + "\r\n\r\n");
    EXPECT_NE(shown.find("\r\nNote: "), std::string::npos) << "nothing tells the system's reason";
    EXPECT_EQ(menu_enabled(desktop), "save run load about");
}

TEST(SaveImages, TwiceWithinASecond) {
    const RunDesktop desktop(0);
    ASSERT_TRUE(desktop.ready);
    save(desktop);
    expect_refusal(desktop,
                   "Output folder \"" + test_utf8(desktop.saved()) +
                       "\" already exists. Saving images failed. Try again.",
                   "");
}

TEST(SaveImages, FolderOfTheProcessFileIsGone) {
    const RunDesktop desktop(0);
    ASSERT_TRUE(desktop.ready);
    SetCurrentDirectoryW(desktop.folder.path.c_str());  // the file dialog went into the folder
    ASSERT_TRUE(DeleteFileW(desktop.file(L"work\\cmos.v2.txt").c_str()));
    ASSERT_TRUE(RemoveDirectoryW(desktop.file(L"work").c_str()));
    expect_refusal(desktop,
                   "Output folder \"" + test_utf8(desktop.saved()) +
                       "\" could not be created because the path doesn't exist anymore. Try again.",
                   "");
}

static BOOL WINAPI refuse_folder(LPCWSTR, LPSECURITY_ATTRIBUTES) {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

TEST(SaveImages, FolderThatMayNotBeCreated) {
    const RunDesktop desktop(0);
    ASSERT_TRUE(desktop.ready);
    import_replace("CreateDirectoryW", refuse_folder);
    expect_refusal(desktop,
                   "Unknown error creating output folder \"" + test_utf8(desktop.saved()) +
                       "\". Saving images failed. Try again.",
                   "");
}

// A disk with room for a number of bytes.
static decltype(fwrite) *fwrite_original;
static size_t disk_room;

static size_t full_disk_write(const void *data, size_t size, size_t count, FILE *file) {
    const size_t bytes = size * count;
    const size_t fitting = bytes < disk_room ? bytes : disk_room;
    disk_room -= fitting;
    fwrite_original(data, 1, fitting, file);
    if (fitting < bytes) {
        errno = ENOSPC;
        return size > 0 ? fitting / size : 0;
    }
    return count;
}

TEST(SaveImages, FullDisk) {
    const RunDesktop desktop(2);
    ASSERT_TRUE(desktop.ready);
    // Room for the first picture and half of the second.
    disk_room = static_cast<size_t>(g_app->images[0]->height) * 1920 * 4 * 3 / 2;
    fwrite_original = import_replace("fwrite", full_disk_write);
    const std::string folder = test_utf8(desktop.saved());
    expect_refusal(desktop, "Error while saving image(s) to output folder \"" + folder + "\"",
                   "Saving images to folder \"" + folder + "\". Please wait ...\r\n");
    std::vector<std::wstring> names = test_folder_list(desktop.saved());
    names.erase(std::remove(names.begin(), names.end(), L"Polygon.gds"), names.end());
    EXPECT_EQ(names, (std::vector<std::wstring>{L"000 The substrate.bmp"}))
        << "what is whole stays, and no part of a picture that does not fit";
}

static decltype(CreateDirectoryW) *create_folder_original;

static BOOL WINAPI create_with_obstacles(LPCWSTR path, LPSECURITY_ATTRIBUTES attributes) {
    const BOOL created = create_folder_original(path, attributes);
    create_folder_original((std::wstring(path) + L"\\001 Cross section after D1 deposition.bmp").c_str(),
                           nullptr);
    return created;
}

TEST(SaveImages, FileThatCannotBeOpened) {
    const RunDesktop desktop(2);
    ASSERT_TRUE(desktop.ready);
    create_folder_original = import_replace("CreateDirectoryW", create_with_obstacles);
    const std::string folder = test_utf8(desktop.saved());
    expect_refusal(desktop, "Error while saving image(s) to output folder \"" + folder + "\"",
                   "Saving images to folder \"" + folder + "\". Please wait ...\r\n");
    EXPECT_EQ(test_folder_list(desktop.saved()).size(), 4U)
        << "the obstacle, the other pictures, the polygons";
}

TEST(SaveImages, LettersThatAFileNameCannotHold) {
    RunDesktop desktop(0);
    ASSERT_TRUE(desktop.ready);
    ASSERT_TRUE(
        run_process(&desktop, write_process(desktop, L"work\\cmos.v2.txt", deposition_line("A?B:C"))));
    save(desktop);
    EXPECT_EQ(test_folder_list(desktop.saved()),
              (std::vector<std::wstring>{L"000 The substrate.bmp",
                                         L"001 Cross section after A_B_C deposition.bmp", L"Polygon.gds"}));
    EXPECT_FALSE(message_box_is_up());
}
