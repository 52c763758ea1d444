#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "platform/platform.h"
#include "tests/support/test_support.h"

static std::wstring text_of(const WideText &text) {
    return text != nullptr ? text.get() : L"(null)";
}

TEST(PlatformUserDataFolder, IsThatOfTheUsersPrograms) {
    std::wstring folder = text_of(platform_user_data_folder());
    EXPECT_TRUE(platform_folder_exists(folder.c_str())) << test_utf8(folder);
    EXPECT_NE(folder.back(), L'\\');
    wchar_t expected[MAX_PATH] = {};
    ASSERT_NE(GetEnvironmentVariableW(L"LOCALAPPDATA", expected, MAX_PATH), 0U);
    EXPECT_EQ(folder, expected);
}

TEST(PlatformProgramFolder, HoldsTheTestProgram) {
    std::wstring folder = text_of(platform_program_folder());
    EXPECT_NE(folder.back(), L'\\');
    EXPECT_TRUE(platform_file_exists((folder + L"\\platform_tests.exe").c_str())) << test_utf8(folder);
}

TEST(PlatformLocalTime, IsThatOfTheClock) {
    SYSTEMTIME before = {};
    GetLocalTime(&before);
    const PlatformTime time = platform_local_time();
    EXPECT_GE(time.year, before.wYear);
    EXPECT_GE(time.month, 1);
    EXPECT_LE(time.month, 12);
    EXPECT_GE(time.day, 1);
    EXPECT_LE(time.day, 31);
    EXPECT_LE(time.hour, 23);
    EXPECT_LE(time.minute, 59);
    EXPECT_LE(time.second, 60);
}
