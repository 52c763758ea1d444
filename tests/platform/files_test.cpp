#include <gtest/gtest.h>

#include <cwchar>

#include "platform/owned_file.h"
#include "platform/platform.h"
#include "tests/support/test_support.h"

TEST(PlatformFileOpen, ReadsWritesAndAppends) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"a.bin");
    const struct {
        const char *mode;
        const char *text;
        const char *expected;
    } cases[] = {{"wb", "first", "first"}, {"a", " second", "first second"}, {"w", "third", "third"}};
    for (const auto &c : cases) {
        OwnedFile file(platform_file_open(path.c_str(), c.mode));
        ASSERT_NE(file, nullptr) << c.mode;
        std::fputs(c.text, file.get());
        file.reset();
        EXPECT_EQ(test_file_read(path), c.expected) << c.mode;
    }
    const OwnedFile file(platform_file_open(path.c_str(), "rb"));
    ASSERT_NE(file, nullptr);
    char bytes[16] = {};
    EXPECT_EQ(std::fread(bytes, 1, sizeof(bytes), file.get()), 5U);
    EXPECT_STREQ(bytes, "third");
}

TEST(PlatformFileOpen, OpensNamesOutsideAscii) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"\u00E9t\u00E9 \u20AC \u65E5\u672C.gds");
    ASSERT_NE(OwnedFile(platform_file_open(path.c_str(), "wb")), nullptr);
    EXPECT_EQ(platform_file_size(path.c_str()), 0);
    EXPECT_EQ(test_folder_list(folder.path),
              std::vector<std::wstring>{L"\u00E9t\u00E9 \u20AC \u65E5\u672C.gds"});
}

TEST(PlatformFileOpen, TellsWhyItFails) {
    TemporaryFolder folder;
    test_file_write(folder.file(L"file"), "x");
    const struct {
        std::wstring path;
        const char *mode;
        const wchar_t *reason;
    } cases[] = {
        {folder.file(L"missing"), "rb", L"No such file or directory"},
        {folder.file(L"missing/file"), "wb", L"No such file or directory"},
        {folder.path, "rb", L"Is a directory"},
        {folder.path, "r", L"Is a directory"},
        {folder.path, "wb", L"Is a directory"},
        {folder.file(L"file/below"), "rb", L"Not a directory"},
        {L"", "rb", L"No such file or directory"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(platform_file_open(c.path.c_str(), c.mode), nullptr) << test_utf8(c.path);
#ifndef _WIN32  // the words are the system's
        EXPECT_STREQ(platform_error_text(), c.reason) << test_utf8(c.path) << " " << c.mode;
#endif
    }
}

static i32 read_error_text(void *argument) {
    *static_cast<std::wstring *>(argument) = platform_error_text();
    return 0;
}

TEST(PlatformErrorText, IsOfItsOwnThread) {
    const TemporaryFolder folder;
    ASSERT_EQ(platform_file_open(folder.file(L"missing").c_str(), "rb"), nullptr);
    const std::wstring mine = platform_error_text();
    std::wstring other;
    PlatformThread *thread = platform_thread_start(read_error_text, &other);
    ASSERT_NE(thread, nullptr);
    platform_thread_join(thread);
    EXPECT_NE(other, mine);
    EXPECT_EQ(platform_error_text(), mine);
}

TEST(PlatformFileSize, CountsBytes) {
    const TemporaryFolder folder;
    EXPECT_EQ(platform_file_size(folder.file(L"missing").c_str()), -1);
    EXPECT_EQ(platform_file_size(folder.path.c_str()), -1) << "a folder is no file";
    test_file_write(folder.file(L"empty"), "");
    EXPECT_EQ(platform_file_size(folder.file(L"empty").c_str()), 0);
    test_file_write(folder.file(L"some"), std::string(70001, 'x'));
    EXPECT_EQ(platform_file_size(folder.file(L"some").c_str()), 70001);
}

TEST(PlatformFileSize, CountsBeyondFourGigabytes) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"large");
    std::FILE *file = platform_file_open(path.c_str(), "wb");
    ASSERT_NE(file, nullptr);
    // Only the last byte takes room on the disk.
    bool written = true;
    for (i32 i = 0; i < 5; ++i) {
        written = written && std::fseek(file, 1 << 30, SEEK_CUR) == 0;
    }
    written = written && std::fputc('x', file) == 'x';
    EXPECT_EQ(std::fclose(file), 0);
    ASSERT_TRUE(written);
    EXPECT_EQ(platform_file_size(path.c_str()), (i64{5} << 30) + 1);
}

TEST(PlatformFileDelete, DeletesFilesOnly) {
    const TemporaryFolder folder;
    test_file_write(folder.file(L"file"), "x");
    EXPECT_TRUE(platform_file_delete(folder.file(L"file").c_str()));
    EXPECT_FALSE(test_file_exists(folder.file(L"file")));
    EXPECT_FALSE(platform_file_delete(folder.file(L"file").c_str()));
    ASSERT_EQ(platform_folder_create(folder.file(L"folder").c_str()), PLATFORM_FOLDER_CREATED);
    EXPECT_FALSE(platform_file_delete(folder.file(L"folder").c_str()));
    EXPECT_TRUE(platform_folder_exists(folder.file(L"folder").c_str()));
}

TEST(PlatformExists, TellsFilesFromFolders) {
    const TemporaryFolder folder;
    const std::wstring file = folder.file(L"file");
    const std::wstring missing = folder.file(L"missing");
    test_file_write(file, "x");
    EXPECT_TRUE(platform_file_exists(file.c_str()));
    EXPECT_FALSE(platform_folder_exists(file.c_str()));
    EXPECT_FALSE(platform_file_exists(folder.path.c_str()));
    EXPECT_TRUE(platform_folder_exists(folder.path.c_str()));
    EXPECT_FALSE(platform_file_exists(missing.c_str()));
    EXPECT_FALSE(platform_folder_exists(missing.c_str()));
    EXPECT_FALSE(platform_file_exists(L""));
    EXPECT_FALSE(platform_folder_exists(L""));
}

TEST(PlatformFolderCreate, TellsWhatItFound) {
    const TemporaryFolder folder;
    test_file_write(folder.file(L"file"), "x");
    const struct {
        const wchar_t *name;
        PlatformFolderResult expected;
    } cases[] = {
        {L"new", PLATFORM_FOLDER_CREATED},
        {L"new", PLATFORM_FOLDER_EXISTS},
        {L"file", PLATFORM_FOLDER_EXISTS},  // something of that name
        {L"new/child", PLATFORM_FOLDER_CREATED},
        {L"missing/child", PLATFORM_FOLDER_PATH_NOT_FOUND},
        {L"file/child", PLATFORM_FOLDER_PATH_NOT_FOUND},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(platform_folder_create(folder.file(c.name).c_str()), c.expected) << test_utf8(c.name);
    }
    EXPECT_TRUE(platform_folder_exists(folder.file(L"new/child").c_str()));
    EXPECT_EQ(platform_folder_create(L""), PLATFORM_FOLDER_PATH_NOT_FOUND);
}

TEST(PlatformFolderCreate, OtherReasonsAreInTheErrorText) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(std::wstring(5000, L'n'));
    EXPECT_EQ(platform_folder_create(path.c_str()), PLATFORM_FOLDER_FAILED);
    EXPECT_GT(std::wcslen(platform_error_text()), 0U);
}

TEST(PlatformFolderCreateAll, CreatesTheParents) {
    const TemporaryFolder folder;
    EXPECT_TRUE(platform_folder_create_all(folder.file(L"a/b/c").c_str()));
    EXPECT_TRUE(platform_folder_exists(folder.file(L"a/b/c").c_str()));
    EXPECT_TRUE(platform_folder_create_all(folder.file(L"a/b/c").c_str())) << "it is there";
    EXPECT_TRUE(platform_folder_create_all((folder.path + L"//d//e//").c_str()));
    EXPECT_TRUE(platform_folder_exists(folder.file(L"d/e").c_str()));
    EXPECT_TRUE(platform_folder_create_all(L"/"));
}

TEST(PlatformFolderCreateAll, TakesPathsOfTheCurrentFolder) {
    const TemporaryFolder folder;
    const CurrentFolder current(folder.path);
    EXPECT_TRUE(platform_folder_create_all(L"x/y"));
    EXPECT_TRUE(platform_folder_create_all(L"./x/../z"));
    EXPECT_TRUE(platform_folder_exists(folder.file(L"x/y").c_str()));
    EXPECT_TRUE(platform_folder_exists(folder.file(L"z").c_str()));
}

TEST(PlatformFolderCreateAll, FailsBelowAFile) {
    const TemporaryFolder folder;
    test_file_write(folder.file(L"file"), "x");
    EXPECT_FALSE(platform_folder_create_all(folder.file(L"file").c_str()));
    EXPECT_FALSE(platform_folder_create_all(folder.file(L"file/a/b").c_str()));
    EXPECT_GT(std::wcslen(platform_error_text()), 0U);
    EXPECT_FALSE(platform_folder_create_all(L""));
}
