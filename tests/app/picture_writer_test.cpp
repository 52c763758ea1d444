#include "app/picture_writer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "platform/memory.h"
#include "platform/platform.h"
#include "tests/support/test_support.h"

#ifndef _WIN32
#include <sys/stat.h>
#endif

// A picture whose file of type BMP has 54 bytes and four a pixel.
static Owned<PixelImage> grey_picture(i32 width, const wchar_t *title) {
    Owned<PixelImage> image(image_create(width, 1, title));
    std::memset(image->pixels, 0x7F, static_cast<size_t>(width) * 4);
    return image;
}

struct WriterFixture {
    TemporaryFolder folder;
    ConsoleCapture capture;
    Owned<PictureFolder> pictures{picture_folder_open(folder.path.c_str(), IMAGE_BMP)};
    Owned<PictureWriter> writer{picture_writer_start(pictures.get())};
};

TEST(PictureWriter, WritesEveryPictureUnderItsNumber) {
    const i64 before = memory_live_blocks();
    {
        WriterFixture fixture;
        for (i32 i = 0; i < 20; ++i) {
            picture_writer_give(fixture.writer.get(), grey_picture(i + 1, L"A"), i);
        }
        fixture.writer = nullptr;  // waits for the last one
        const std::vector<std::wstring> names = test_folder_list(fixture.folder.path);
        ASSERT_EQ(names.size(), 20U);
        EXPECT_EQ(names[7], L"007 A.bmp");
        for (size_t i = 0; i < 20; ++i) {
            EXPECT_EQ(test_file_read(fixture.folder.file(names[i])).size(), 54 + 4 * (i + 1)) << i;
        }
        EXPECT_EQ(fixture.pictures->failed, 0);
        EXPECT_EQ(fixture.capture.diagnostics(), "");
    }
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(PictureWriter, WithoutAPictureItEndsAtOnce) {
    WriterFixture fixture;
    picture_writer_wait(fixture.writer.get());
    fixture.writer = nullptr;
    EXPECT_EQ(test_folder_list(fixture.folder.path).size(), 0U);
    picture_writer_free(nullptr);
}

// Folders lie where two of three pictures should.
TEST(PictureWriter, FailuresAreToldInOrderAndCounted) {
    WriterFixture fixture;
    std::filesystem::create_directory(std::filesystem::path(fixture.folder.file(L"000 A.bmp")));
    std::filesystem::create_directory(std::filesystem::path(fixture.folder.file(L"002 C.bmp")));
    picture_writer_give(fixture.writer.get(), grey_picture(1, L"A"), 0);
    picture_writer_give(fixture.writer.get(), grey_picture(1, L"B"), 1);
    picture_writer_give(fixture.writer.get(), grey_picture(1, L"C"), 2);
    picture_writer_wait(fixture.writer.get());
    EXPECT_EQ(fixture.pictures->failed, 2);
    const std::string told = fixture.capture.diagnostics();
    const size_t first = told.find("000 A.bmp: ");
    const size_t last = told.find("002 C.bmp: ");
    ASSERT_NE(first, std::string::npos) << told;
    ASSERT_NE(last, std::string::npos) << told;
    EXPECT_LT(first, last);
    EXPECT_EQ(told.find("001 B.bmp"), std::string::npos);
    EXPECT_TRUE(test_file_exists(fixture.folder.file(L"001 B.bmp")));
}

#ifndef _WIN32
// Nobody takes what is written into the pipe until the picture was handed over.
TEST(PictureWriter, WhoeverHandsAPictureOverGoesOn) {
    WriterFixture fixture;
    const std::string pipe = test_utf8(fixture.folder.file(L"000 A.bmp"));
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::atomic<bool> given{false};
    std::atomic<bool> given_first{false};
    std::string bytes;
    std::thread reader([&] {
        for (i32 i = 0; i < 1000 && !given; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        given_first = given.load();
        std::ifstream stream(pipe, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    });
    picture_writer_give(fixture.writer.get(), grey_picture(100000, L"A"), 0);
    given = true;
    picture_writer_wait(fixture.writer.get());
    reader.join();
    EXPECT_TRUE(given_first);
    EXPECT_EQ(bytes.size(), 400054U);
}
#endif
