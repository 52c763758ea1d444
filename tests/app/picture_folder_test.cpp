#include "app/picture_folder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "platform/memory.h"
#include "tests/support/test_support.h"

struct FolderFixture {
    TemporaryFolder folder;
    ConsoleCapture capture;
    Owned<PixelImage> image{image_create(2, 1, L"x")};

    FolderFixture() { std::memset(image->pixels, 0x7F, 8); }

    void write(const wchar_t *name) const { test_file_write(folder.file(name), "old"); }
    std::vector<std::wstring> list() const { return test_folder_list(folder.path); }
};

TEST(PictureFolder, ReplacesThePictureOfTheSameNumber) {
    const FolderFixture fixture;
    fixture.write(L"000 The substrate.png");
    fixture.write(L"001 Cross section after A deposition.bmp");
    fixture.write(L"001 Cross section after A deposition.png");
    fixture.write(L"001 Cross section after B etching.bmp");
    fixture.write(L"002 Cross section after C strip.bmp");
    fixture.write(L"001 holiday.png");
    const i64 before = memory_live_blocks();
    Owned<PictureFolder> folder(picture_folder_open(fixture.folder.path.c_str(), IMAGE_BMP));
    EXPECT_EQ(folder->older.count, 5);
    picture_folder_save(folder.get(), fixture.image.get(), 0, L"The substrate");
    picture_folder_save(folder.get(), fixture.image.get(), 1, L"Cross section after B etching");
    EXPECT_EQ(folder->failed, 0);
    EXPECT_EQ(fixture.capture.diagnostics(), "");
    const std::vector<std::wstring> expected = {L"000 The substrate.bmp",
                                                L"001 Cross section after B etching.bmp", L"001 holiday.png",
                                                L"002 Cross section after C strip.bmp"};
    EXPECT_EQ(fixture.list(), expected);
    EXPECT_EQ(test_file_read(fixture.folder.file(expected[1])).size(), 62U);
    picture_folder_report(folder.get());
    EXPECT_EQ(fixture.capture.diagnostics(),
              test_utf8(fixture.folder.path) + ": another picture of an earlier run lies there\n");
    folder = nullptr;
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(PictureFolder, APictureThatFailsLeavesTheOldOne) {
    FolderFixture fixture;
    fixture.write(L"001 Cross section after A deposition.bmp");
    fixture.write(L"002 Cross section after A deposition.bmp");
    std::filesystem::create_directory(
        std::filesystem::path(fixture.folder.file(L"001 Cross section after B.bmp")));
    const Owned<PictureFolder> folder(picture_folder_open(fixture.folder.path.c_str(), IMAGE_BMP));
    picture_folder_save(folder.get(), fixture.image.get(), 1, L"Cross section after B");
    picture_folder_save(folder.get(), nullptr, 2, L"Cross section after C");
    EXPECT_EQ(folder->failed, 2);
    EXPECT_TRUE(test_file_exists(fixture.folder.file(L"001 Cross section after A deposition.bmp")));
    EXPECT_TRUE(test_file_exists(fixture.folder.file(L"002 Cross section after A deposition.bmp")));
    EXPECT_NE(fixture.capture.diagnostics().find("002 Cross section after C.bmp: no memory"),
              std::string::npos);
    fixture.capture.reset();
    picture_folder_report(folder.get());
    // The folder in the way counts too: it has the name of a picture.
    EXPECT_EQ(fixture.capture.diagnostics(),
              test_utf8(fixture.folder.path) + ": 3 other pictures of an earlier run lie there\n");
}

// Where upper and lower case are the same the new picture has taken the old one's place, and stays.
TEST(PictureFolder, ANameThatDiffersInCaseOnly) {
    const FolderFixture fixture;
    fixture.write(L"001 Cross section after ox.bmp");
    const Owned<PictureFolder> folder(picture_folder_open(fixture.folder.path.c_str(), IMAGE_BMP));
    picture_folder_save(folder.get(), fixture.image.get(), 1, L"Cross section after OX");
    ASSERT_EQ(fixture.list().size(), 1U);
    EXPECT_EQ(test_file_read(fixture.folder.file(fixture.list()[0])).size(), 62U);
}

TEST(PictureFolder, SaysNothingOfAnEmptyFolder) {
    const FolderFixture fixture;
    const Owned<PictureFolder> folder(picture_folder_open(fixture.folder.path.c_str(), IMAGE_PNG));
    picture_folder_report(folder.get());
    EXPECT_EQ(fixture.capture.diagnostics(), "");
}
