// What only Windows does to paths: two separators, drives, servers, and a limit of length that is lifted.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "platform/owned_file.h"
#include "platform/platform.h"
#include "platform/win32/system_path.h"
#include "tests/support/test_support.h"

static std::wstring system_path_of(const std::wstring &path) {
    return system_path(path.c_str()).get();
}

TEST(SystemPath, OnlyLongPathsGetThePrefix) {
    const std::wstring part(100, L'n');
    const std::wstring tail = L"\\" + part + L"\\" + part + L"\\" + part;
    const struct {
        std::wstring path, expected;
    } cases[] = {
        {L"", L""},
        {L"short.txt", L"short.txt"},
        {L"C:\\folder\\file", L"C:\\folder\\file"},
        {L"C:" + tail, L"\\\\?\\C:" + tail},
        {L"C:/a/../" + part + L"/" + part + L"/" + part, L"\\\\?\\C:" + tail},
        {L"\\\\server\\share" + tail, L"\\\\?\\UNC\\server\\share" + tail},
        {L"\\\\?\\C:" + tail, L"\\\\?\\C:" + tail},
        {L"\\\\.\\pipe" + tail, L"\\\\.\\pipe" + tail},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(system_path_of(c.path), c.expected) << test_utf8(c.path);
    }
}

// Folders and a file in them beyond 260 units, absolute and seen from the current folder.
TEST(PlatformFiles, PathsOfGreatLengthWork) {
    const TemporaryFolder folder;
    std::wstring deep = folder.path;
    for (i32 i = 0; i < 5; ++i) {
        deep += L"\\" + std::wstring(100, static_cast<wchar_t>(L'a' + i));
    }
    ASSERT_TRUE(platform_folder_create_all(deep.c_str())) << test_utf8(platform_error_text());
    EXPECT_TRUE(platform_folder_exists(deep.c_str()));
    EXPECT_EQ(platform_folder_create(deep.c_str()), PLATFORM_FOLDER_EXISTS);
    const std::wstring path = deep + L"\\file.txt";
    OwnedFile file(platform_file_open(path.c_str(), "wb"));
    ASSERT_NE(file, nullptr) << test_utf8(platform_error_text());
    std::fputs("text", file.get());
    file.reset();
    EXPECT_EQ(platform_file_size(path.c_str()), 4);
    EXPECT_TRUE(platform_file_exists(path.c_str()));
    {
        const CurrentFolder current(folder.path);
        const std::wstring relative = path.substr(folder.path.size() + 1);
        EXPECT_TRUE(platform_file_exists(relative.c_str()));
    }
    EXPECT_TRUE(platform_file_delete(path.c_str()));
    for (; deep != folder.path; deep = deep.substr(0, deep.rfind(L'\\'))) {
        EXPECT_TRUE(RemoveDirectoryW(system_path_of(deep).c_str())) << GetLastError();
    }
}

TEST(PlatformFolderCreateAll, TakesBothSeparatorsAndDrives) {
    const TemporaryFolder folder;
    EXPECT_TRUE(platform_folder_create_all((folder.path + L"/a\\b/c\\").c_str()));
    EXPECT_TRUE(platform_folder_exists((folder.path + L"\\a\\b\\c").c_str()));
    std::wstring drive = folder.path.substr(0, 2);
    ASSERT_EQ(drive[1], L':');
    EXPECT_TRUE(platform_folder_create_all((drive + L"\\").c_str()));
    EXPECT_FALSE(platform_folder_create_all(L"?:\\a\\b"));
}

TEST(PlatformErrorText, IsASentenceWithoutItsEnd) {
    const TemporaryFolder folder;
    EXPECT_EQ(platform_file_open(folder.file(L"missing").c_str(), "rb"), nullptr);
    std::wstring reason = platform_error_text();
    ASSERT_FALSE(reason.empty());
    EXPECT_EQ(reason.find_first_of(L"\r\n"), std::wstring::npos);
    EXPECT_NE(reason.back(), L'.');
    EXPECT_EQ(platform_file_open(folder.path.c_str(), "rb"), nullptr);
    EXPECT_NE(platform_error_text(), reason) << "a folder is refused for another reason";
}

TEST(PlatformFileOpen, TextModeHasTheLineEndsOfTheSystem) {
    const TemporaryFolder folder;
    OwnedFile file(platform_file_open(folder.file(L"t").c_str(), "w"));
    ASSERT_NE(file, nullptr);
    std::fputs("a\nb\n", file.get());
    file.reset();
    EXPECT_EQ(test_file_read(folder.file(L"t")), "a\r\nb\r\n");
}
