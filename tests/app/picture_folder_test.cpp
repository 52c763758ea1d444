#include "app/picture_folder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "platform/memory.h"
#include "tests/support/test_support.h"

struct FolderScene {
    TemporaryFolder folder;
    ConsoleCapture capture;
    PixelImage *image = image_create(2, 1, L"x");

    FolderScene() { std::memset(image->pixels, 0x7F, 8); }
    ~FolderScene() { image_free(image); }
    FolderScene(const FolderScene &) = delete;
    FolderScene &operator=(const FolderScene &) = delete;

    void write(const wchar_t *name) const { test_file_write(folder.file(name), "old"); }
    std::vector<std::wstring> list() const { return test_folder_list(folder.path); }
};

TEST(PictureFolder, ReplacesThePictureOfTheSameNumber) {
    const FolderScene scene;
    scene.write(L"000 The substrate.png");
    scene.write(L"001 Cross section after A deposition.bmp");
    scene.write(L"001 Cross section after A deposition.png");
    scene.write(L"001 Cross section after B etching.bmp");
    scene.write(L"002 Cross section after C strip.bmp");
    scene.write(L"001 holiday.png");
    const i64 before = memory_live_blocks();
    PictureFolder *folder = picture_folder_open(scene.folder.path.c_str(), IMAGE_BMP);
    EXPECT_EQ(folder->older_count, 5);
    picture_folder_save(folder, scene.image, 0, L"The substrate");
    picture_folder_save(folder, scene.image, 1, L"Cross section after B etching");
    EXPECT_EQ(folder->failed, 0);
    EXPECT_EQ(scene.capture.diagnostics(), "");
    const std::vector<std::wstring> expected = {L"000 The substrate.bmp",
                                                L"001 Cross section after B etching.bmp", L"001 holiday.png",
                                                L"002 Cross section after C strip.bmp"};
    EXPECT_EQ(scene.list(), expected);
    EXPECT_EQ(test_file_read(scene.folder.file(expected[1])).size(), 62U);
    picture_folder_report(folder);
    EXPECT_EQ(test_utf8(scene.folder.path) + ": another picture of an earlier run lies there\n",
              scene.capture.diagnostics());
    picture_folder_free(folder);
    EXPECT_EQ(before, memory_live_blocks());
}

TEST(PictureFolder, APictureThatFailsLeavesTheOldOne) {
    FolderScene scene;
    scene.write(L"001 Cross section after A deposition.bmp");
    scene.write(L"002 Cross section after A deposition.bmp");
    std::filesystem::create_directory(
        std::filesystem::path(scene.folder.file(L"001 Cross section after B.bmp")));
    PictureFolder *folder = picture_folder_open(scene.folder.path.c_str(), IMAGE_BMP);
    picture_folder_save(folder, scene.image, 1, L"Cross section after B");
    picture_folder_save(folder, nullptr, 2, L"Cross section after C");
    EXPECT_EQ(folder->failed, 2);
    EXPECT_TRUE(test_file_exists(scene.folder.file(L"001 Cross section after A deposition.bmp")));
    EXPECT_TRUE(test_file_exists(scene.folder.file(L"002 Cross section after A deposition.bmp")));
    EXPECT_NE(std::string::npos,
              scene.capture.diagnostics().find("002 Cross section after C.bmp: no memory"));
    scene.capture.reset();
    picture_folder_report(folder);
    // The folder in the way counts too: it has the name of a picture.
    EXPECT_EQ(test_utf8(scene.folder.path) + ": 3 other pictures of an earlier run lie there\n",
              scene.capture.diagnostics());
    picture_folder_free(folder);
}

// Where upper and lower case are the same the new picture has taken the old one's place, and stays.
TEST(PictureFolder, ANameThatDiffersInCaseOnly) {
    const FolderScene scene;
    scene.write(L"001 Cross section after ox.bmp");
    PictureFolder *folder = picture_folder_open(scene.folder.path.c_str(), IMAGE_BMP);
    picture_folder_save(folder, scene.image, 1, L"Cross section after OX");
    ASSERT_EQ(scene.list().size(), 1U);
    EXPECT_EQ(test_file_read(scene.folder.file(scene.list()[0])).size(), 62U);
    picture_folder_free(folder);
}

TEST(PictureFolder, SaysNothingOfAnEmptyFolder) {
    const FolderScene scene;
    PictureFolder *folder = picture_folder_open(scene.folder.path.c_str(), IMAGE_PNG);
    picture_folder_report(folder);
    EXPECT_EQ(scene.capture.diagnostics(), "");
    picture_folder_free(folder);
    picture_folder_free(nullptr);
}
