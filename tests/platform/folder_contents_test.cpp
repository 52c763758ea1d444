#include "platform/folder_contents.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/platform.h"
#include "tests/support/test_support.h"

static void add_name(const wchar_t *name, void *context) {
    static_cast<std::vector<std::wstring> *>(context)->push_back(name);
}

TEST(PlatformFolderVisit, GivesEveryNameOnce) {
    const TemporaryFolder folder;
    std::vector<std::wstring> found;
    platform_folder_visit(folder.path.c_str(), add_name, &found);
    EXPECT_TRUE(found.empty());
    const std::vector<std::wstring> expected = {L".hidden", L"a file", L"folder", L"\u65E5\u672C.txt"};
    for (const std::wstring &name : expected) {
        if (name == L"folder") {
            platform_folder_create(folder.file(name).c_str());
        } else {
            test_file_write(folder.file(name), "x");
        }
    }
    platform_folder_visit(folder.path.c_str(), add_name, &found);
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, expected);
}

TEST(PlatformFolderVisit, AFolderThatIsNotThereGivesNothing) {
    const TemporaryFolder folder;
    test_file_write(folder.file(L"file"), "x");
    std::vector<std::wstring> found;
    platform_folder_visit(folder.file(L"missing").c_str(), add_name, &found);
    platform_folder_visit(folder.file(L"file").c_str(), add_name, &found);
    EXPECT_TRUE(found.empty());
}

TEST(PlatformFolderRemove, TakesEmptyFoldersOnly) {
    const TemporaryFolder folder;
    ASSERT_TRUE(platform_folder_create_all(folder.file(L"a/b").c_str()));
    test_file_write(folder.file(L"file"), "x");
    EXPECT_FALSE(platform_folder_remove(folder.file(L"a").c_str()));
    EXPECT_GT(std::wstring(platform_error_text()).size(), 0U);
    EXPECT_TRUE(platform_folder_remove(folder.file(L"a/b").c_str()));
    EXPECT_TRUE(platform_folder_remove(folder.file(L"a").c_str()));
    EXPECT_FALSE(platform_folder_remove(folder.file(L"a").c_str()));
    EXPECT_FALSE(platform_folder_remove(folder.file(L"file").c_str()));
    EXPECT_TRUE(test_file_exists(folder.file(L"file")));
}
