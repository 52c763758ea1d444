#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "platform/owned_file.h"
#include "platform/platform.h"
#include "tests/support/test_support.h"

// A text that the platform gave, as UTF-8; "(null)" for none.
static std::string utf8_of(const WideText &text) {
    return text != nullptr ? test_utf8(text.get()) : "(null)";
}

// Sets an environment variable (null: takes it away) until the record goes out of scope.
struct Environment {
    Environment(const char *variable, const char *value) : name(variable) {
        const char *before = std::getenv(variable);
        was_set = before != nullptr;
        previous = was_set ? before : "";
        set(value);
    }
    ~Environment() { set(was_set ? previous.c_str() : nullptr); }
    Environment(const Environment &) = delete;
    Environment &operator=(const Environment &) = delete;

    void set(const char *value) const {
        if (value != nullptr) {
            setenv(name, value, 1);
        } else {
            unsetenv(name);
        }
    }

    const char *name;
    bool was_set;
    std::string previous;
};

TEST(PlatformUserDataFolder, FollowsTheDesktopRules) {
    const passwd *user = getpwuid(getuid());
    ASSERT_NE(user, nullptr);
    std::string registered = std::string(user->pw_dir) + "/.local/share";
    const struct {
        const char *data_home;
        const char *home;
        std::string expected;
    } cases[] = {
        {"/data/of/user", "/home/user", "/data/of/user"},
        {"relative/path", "/home/user", "/home/user/.local/share"},  // such a value is ignored
        {"", "/home/user", "/home/user/.local/share"},
        {nullptr, "/home/user", "/home/user/.local/share"},
        {nullptr, "", registered},
        {nullptr, nullptr, registered},
        {"/d\xC3\xA9j\xC3\xA0", nullptr, "/d\xC3\xA9j\xC3\xA0"},
    };
    for (const auto &c : cases) {
        const Environment data_home("XDG_DATA_HOME", c.data_home);
        const Environment home("HOME", c.home);
        EXPECT_EQ(utf8_of(platform_user_data_folder()), c.expected);
    }
}

TEST(PlatformProgramFolder, HoldsTheTestProgram) {
    std::string folder = utf8_of(platform_program_folder());
    EXPECT_EQ(folder.front(), '/');
    EXPECT_NE(folder.back(), '/');
    EXPECT_TRUE(test_file_exists(test_wide(folder + "/platform_tests"))) << folder;
}

TEST(PlatformFiles, NamesThatAreNotTextSurvive) {
    const TemporaryFolder folder;
    const std::wstring path =
        folder.path + L"/" + std::wstring{L'r', wchar_t(0xDCE9), L's'};  // Latin-1 "res"
    ASSERT_NE(OwnedFile(platform_file_open(path.c_str(), "wb")), nullptr);
    EXPECT_EQ(access((test_utf8(folder.path) + "/r\xE9s").c_str(), F_OK), 0);
    EXPECT_TRUE(platform_file_delete(path.c_str()));
}

TEST(PlatformFolderCreate, AFolderThatMayNotBeWrittenIsNamed) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "the superuser may write everywhere";
    }
    const TemporaryFolder folder;
    const std::string locked = test_utf8(folder.file(L"locked"));
    ASSERT_EQ(platform_folder_create(test_wide(locked).c_str()), PLATFORM_FOLDER_CREATED);
    const std::string command = "chmod 500 " + locked;
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(platform_folder_create(test_wide(locked + "/a").c_str()), PLATFORM_FOLDER_FAILED);
    EXPECT_STREQ(platform_error_text(), L"Permission denied");
    EXPECT_FALSE(platform_folder_create_all(test_wide(locked + "/a/b").c_str()));
    EXPECT_STREQ(platform_error_text(), L"Permission denied");
}

TEST(PlatformLocalTime, IsACalendarTime) {
    const PlatformTime time = platform_local_time();
    EXPECT_GE(time.year, 2024);
    EXPECT_TRUE(time.month >= 1 && time.month <= 12) << time.month;
    EXPECT_TRUE(time.day >= 1 && time.day <= 31) << time.day;
    EXPECT_TRUE(time.hour >= 0 && time.hour <= 23) << time.hour;
    EXPECT_TRUE(time.minute >= 0 && time.minute <= 59) << time.minute;
    EXPECT_TRUE(time.second >= 0 && time.second <= 60) << time.second;
}

TEST(PlatformLocalTime, IsOfTheLocalZone) {
    // Two zones 14 hours apart: the calendar fields must differ whatever the moment is.
    const Environment zone("TZ", "AAA-12");
    tzset();
    const PlatformTime east = platform_local_time();
    zone.set("BBB2");
    tzset();
    const PlatformTime west = platform_local_time();
    EXPECT_TRUE(east.hour != west.hour || east.day != west.day);
    zone.set(zone.was_set ? zone.previous.c_str() : nullptr);
    tzset();
}
