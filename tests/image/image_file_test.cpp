#include "image/image_file.h"
#include <gtest/gtest.h>
#include "image/bmp.h"
#include "image/png.h"
#include "image_test_support.h"
#include "platform/memory.h"
#include "tests/support/test_support.h"

#ifdef __linux__
#include <sys/resource.h>
#include <unistd.h>
#include <csignal>
#endif

static const ImageFormat FORMATS[] = {IMAGE_BMP, IMAGE_PNG};

TEST(ImageSave, WritesWhatTheWriterOfTheFormatWrites) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image = test_image(9, 4);
    ASSERT_EQ(image_save(image.get(), folder.file(L"a.bmp").c_str(), IMAGE_BMP), 0);
    ASSERT_EQ(bmp_write(image.get(), folder.file(L"b.bmp").c_str()), 0);
    EXPECT_EQ(test_file_read(folder.file(L"a.bmp")), test_file_read(folder.file(L"b.bmp")));
    ASSERT_EQ(image_save(image.get(), folder.file(L"a.png").c_str(), IMAGE_PNG), 0);
    ASSERT_EQ(png_write_image(image.get(), folder.file(L"b.png").c_str()), 0);
    EXPECT_EQ(test_file_read(folder.file(L"a.png")), test_file_read(folder.file(L"b.png")));
}

TEST(ImageSave, ReplacesAnOlderFile) {
    const TemporaryFolder folder;
    test_file_write(folder.file(L"a.bmp"), std::string(1000, 'x'));
    const Owned<PixelImage> image = test_image(1, 1);
    EXPECT_EQ(image_save(image.get(), folder.file(L"a.bmp").c_str(), IMAGE_BMP), 0);
    EXPECT_EQ(test_file_read(folder.file(L"a.bmp")).size(), 58U);
}

TEST(ImageSave, TellsWhyAFileCannotBeOpened) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image = test_image(1, 1);
    for (const ImageFormat format : FORMATS) {
        const ConsoleCapture capture;
        const std::wstring path = folder.file(L"missing/a.bmp");
        EXPECT_EQ(image_save(image.get(), path.c_str(), format), 1);
        const std::string told = capture.diagnostics();
        EXPECT_EQ(told.find(test_utf8(path) + ": "), 0U) << told;
        EXPECT_GT(told.size(), test_utf8(path).size() + 4) << "no reason is given";
    }
}

TEST(ImageSave, AnEmptyPictureMakesNoFile) {
    const TemporaryFolder folder;
    const ConsoleCapture capture;
    const Owned<PixelImage> image(image_create(4, 0, L"empty"));
    EXPECT_EQ(image_save(image.get(), folder.file(L"a.bmp").c_str(), IMAGE_BMP), 1);
    EXPECT_FALSE(test_file_exists(folder.file(L"a.bmp")));
    EXPECT_NE(capture.diagnostics(), "");
}

#ifdef __linux__

// While it is in scope no file of this program can grow beyond a number of bytes.
struct FileSizeLimit {
    rlimit previous;
    void (*handler)(int);

    explicit FileSizeLimit(u64 bytes) : previous(), handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &previous);
        rlimit limit = previous;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &previous);
        std::signal(SIGXFSZ, handler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;
};

TEST(ImageSave, DeletesAFileThatIsCutShort) {
    const TemporaryFolder folder;
    const Owned<PixelImage> image = test_image(400, 300);
    // Cut before anything, within the headers, and within the pixels (also of the PNG, which is small).
    for (const u64 limit : {u64{0}, u64{20}, u64{200}, u64{1000}}) {
        for (const ImageFormat format : FORMATS) {
            const ConsoleCapture capture;
            const std::wstring path = folder.file(L"cut");
            const i64 before = memory_live_blocks();
            i32 result = 0;
            {
                const FileSizeLimit size_limit(limit);
                result = image_save(image.get(), path.c_str(), format);
            }
            EXPECT_EQ(result, 1) << "limit " << limit;
            EXPECT_FALSE(test_file_exists(path)) << "limit " << limit;
            EXPECT_EQ(capture.diagnostics(), test_utf8(path) + ": File too large\n");
            EXPECT_EQ(memory_live_blocks(), before);
        }
    }
}

TEST(ImageSave, KeepsADeviceThatIsFull) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"full");
    ASSERT_EQ(symlink("/dev/full", test_utf8(path).c_str()), 0);
    const Owned<PixelImage> image = test_image(64, 64);
    for (const ImageFormat format : FORMATS) {
        const ConsoleCapture capture;
        EXPECT_EQ(image_save(image.get(), path.c_str(), format), 1);
        EXPECT_EQ(capture.diagnostics(), test_utf8(path) + ": No space left on device\n");
        EXPECT_EQ(access(test_utf8(path).c_str(), F_OK), 0) << "the device's name is gone";
    }
}

#endif
