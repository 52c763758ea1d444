#include "platform/whole_file.h"

#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/wait.h>
#endif

#include <cstdlib>
#include <filesystem>

#include "platform/file_replace.h"
#include "platform/memory.h"
#include "platform/platform.h"
#include "tests/support/test_support.h"

namespace fs = std::filesystem;

static std::vector<std::wstring> names(std::initializer_list<const wchar_t *> list) {
    return {list.begin(), list.end()};
}

TEST(WholeFile, HasItsNameOnceItIsCommitted) {
    const TemporaryFolder folder;
    const i64 before = memory_live_blocks();
    WholeFile whole;
    ASSERT_TRUE(whole_file_open(&whole, folder.file(L"a.bin").c_str(), "wb"));
    std::fputs("new", whole.file);
    std::fflush(whole.file);
    EXPECT_FALSE(test_file_exists(folder.file(L"a.bin")));
    EXPECT_EQ(test_folder_list(folder.path).size(), 1U) << "the temporary file";
    ASSERT_TRUE(whole_file_commit(&whole));
    EXPECT_EQ(test_file_read(folder.file(L"a.bin")), "new");
    EXPECT_EQ(test_folder_list(folder.path), names({L"a.bin"}));
    EXPECT_EQ(whole.file, nullptr);
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(WholeFile, AnOlderFileStaysUntilThen) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"a.bin");
    test_file_write(path, "old and longer");
    for (const bool commit : {false, true}) {
        WholeFile whole;
        ASSERT_TRUE(whole_file_open(&whole, path.c_str(), "wb"));
        std::fputs("new", whole.file);
        std::fflush(whole.file);
        EXPECT_EQ(test_file_read(path), "old and longer");
        if (commit) {
            EXPECT_TRUE(whole_file_commit(&whole));
        } else {
            whole_file_abandon(&whole);
        }
        EXPECT_EQ(test_file_read(path), commit ? "new" : "old and longer");
        EXPECT_EQ(test_folder_list(folder.path), names({L"a.bin"}));
    }
}

TEST(WholeFile, TwoAtATimeDoNotShareATemporaryName) {
    const TemporaryFolder folder;
    WholeFile a;
    WholeFile b;
    ASSERT_TRUE(whole_file_open(&a, folder.file(L"a").c_str(), "wb"));
    ASSERT_TRUE(whole_file_open(&b, folder.file(L"b").c_str(), "wb"));
    std::fputs("first", a.file);
    std::fputs("second", b.file);
    EXPECT_TRUE(whole_file_commit(&a));
    EXPECT_TRUE(whole_file_commit(&b));
    EXPECT_EQ(test_file_read(folder.file(L"a")), "first");
    EXPECT_EQ(test_file_read(folder.file(L"b")), "second");
}

TEST(WholeFile, PathsOfTheCurrentFolder) {
    const TemporaryFolder folder;
    const CurrentFolder current(folder.path);
    WholeFile whole;
    ASSERT_TRUE(whole_file_open(&whole, L"a.txt", "w"));
    std::fputs("text", whole.file);
    EXPECT_TRUE(whole_file_commit(&whole));
    EXPECT_EQ(test_file_read(folder.file(L"a.txt")), "text");
}

TEST(WholeFile, TellsWhyItCannotBeOpened) {
    TemporaryFolder folder;
    test_file_write(folder.file(L"file"), "x");
    const struct {
        std::wstring path;
        const wchar_t *reason;
    } cases[] = {
        {folder.file(L"missing/a"), L"No such file or directory"},
        {folder.file(L"file/a"), L"Not a directory"},
        {folder.path, L"Is a directory"},
    };
    for (const auto &c : cases) {
        const i64 before = memory_live_blocks();
        WholeFile whole;
        EXPECT_FALSE(whole_file_open(&whole, c.path.c_str(), "wb")) << test_utf8(c.path);
        EXPECT_EQ(whole.file, nullptr);
        wchar_t reason[WHOLE_FILE_REASON_SIZE] = {};
        EXPECT_FALSE(whole_file_try(c.path.c_str(), reason)) << test_utf8(c.path);
#ifdef _WIN32  // the words are the system's
        EXPECT_STRNE(whole.reason, L"");
        EXPECT_STRNE(reason, L"");
#else
        EXPECT_STREQ(whole.reason, c.reason);
        EXPECT_STREQ(reason, c.reason);
#endif
        EXPECT_EQ(memory_live_blocks(), before);
    }
}

TEST(WholeFile, ANameThatTheSystemDoesNotTakeLeavesNothing) {
    const TemporaryFolder folder;
    WholeFile whole;
    ASSERT_TRUE(whole_file_open(&whole, folder.file(std::wstring(300, L'n')).c_str(), "wb"));
    std::fputs("text", whole.file);
    EXPECT_FALSE(whole_file_commit(&whole));
    EXPECT_STRNE(whole.reason, L"");
    EXPECT_TRUE(test_folder_list(folder.path).empty());
}

// In a process of its own, which ends with two files under way.
TEST(WholeFilesEndDeathTest, NothingOfAFileUnderWayIsLeft) {
    TEST_NEEDS_FORK();
    const TemporaryFolder folder;
    auto end_on_the_way = [&folder] {
        WholeFile done;
        WholeFile first;
        WholeFile second;
        bool good = whole_file_open(&done, folder.file(L"done").c_str(), "wb") && whole_file_commit(&done);
        good = good && whole_file_open(&first, folder.file(L"first").c_str(), "wb") &&
               whole_file_open(&second, folder.file(L"second").c_str(), "wb");
        std::fputs("a part", second.file);
        std::fflush(second.file);
        whole_files_end();
        std::_Exit(good ? 0 : 1);
    };
    EXPECT_EXIT(end_on_the_way(), ::testing::ExitedWithCode(0), "");
    EXPECT_EQ(names({L"done"}), test_folder_list(folder.path));
}

#ifndef _WIN32  // where a file that is open cannot be removed

static constexpr int ALL_DONE = 7;

// Tries a file, writes one and gives one up, with so many allocations allowed.
[[noreturn]] static void write_and_exit(const TemporaryFolder &folder, i64 allowed) {
    memory_set_failure_hook(nullptr);
    memory_add_last_act(whole_files_end);
    wchar_t reason[WHOLE_FILE_REASON_SIZE] = {};
    WholeFile done;
    WholeFile given_up;
    memory_trip_after(allowed);
    bool good = whole_file_try(folder.file(L"tried").c_str(), reason);
    good = whole_file_open(&done, folder.file(L"done").c_str(), "wb") && whole_file_commit(&done) && good;
    good = whole_file_open(&given_up, folder.file(L"given up").c_str(), "wb") && good;
    whole_file_abandon(&given_up);
    std::_Exit(good ? ALL_DONE : 1);
}

// A program whose end is told elsewhere: the thread that lacks memory says so, and waits for the end.
static PlatformSemaphore *lacks_memory;

static void say_and_wait(const char *) {
    platform_semaphore_post(lacks_memory);
    const Owned<PlatformSemaphore> never(platform_semaphore_create());
    platform_semaphore_wait(never.get());
}

// Lacks memory while the file is given its name.
static i32 commit_without_memory(void *path) {
    WholeFile whole;
    const bool opened = whole_file_open(&whole, static_cast<const wchar_t *>(path), "wb");
    std::fputs("a part", whole.file);
    memory_trip_after(0);
    return opened && whole_file_commit(&whole) ? 1 : 0;
}

TEST(WholeFilesEndDeathTest, AThreadThatWaitsForTheEndLeavesNothing) {
    TEST_NEEDS_FORK();
    const TemporaryFolder folder;
    std::wstring path = folder.file(L"file");
    auto end_beside_it = [&path] {
        lacks_memory = platform_semaphore_create();
        memory_set_failure_hook(say_and_wait);
        platform_thread_start(commit_without_memory, path.data());
        platform_semaphore_wait(lacks_memory);
        whole_files_end();
        std::_Exit(0);
    };
    EXPECT_EXIT(end_beside_it(), ::testing::ExitedWithCode(0), "");
    EXPECT_TRUE(test_folder_list(folder.path).empty());
}

TEST(WholeFilesEndDeathTest, LackOfMemoryLeavesNothingOfAFile) {
    const TemporaryFolder folder;
    i32 ended = 0;
    bool all_done = false;
    for (i64 allowed = 0; allowed < 1000 && !all_done && !HasFailure(); ++allowed) {
        int status = -1;
        auto note = [&status](int code) {
            status = WIFEXITED(code) ? WEXITSTATUS(code) : -1;
            return true;
        };
        EXPECT_EXIT(write_and_exit(folder, allowed), note, "");
        all_done = status == ALL_DONE;
        EXPECT_TRUE(all_done || status == TEST_OUT_OF_MEMORY) << status << " with " << allowed;
        ended += all_done ? 0 : 1;
        for (const std::wstring &name : test_folder_list(folder.path)) {
            EXPECT_EQ(test_utf8(name), "done") << "left with " << allowed;
        }
    }
    EXPECT_TRUE(all_done);
    EXPECT_GT(ended, 10);
}

#endif

TEST(WholeFileTry, LeavesThingsAsTheyAre) {
    const TemporaryFolder folder;
    test_file_write(folder.file(L"there"), "old");
    wchar_t reason[WHOLE_FILE_REASON_SIZE] = {};
    EXPECT_TRUE(whole_file_try(folder.file(L"there").c_str(), reason));
    EXPECT_TRUE(whole_file_try(folder.file(L"not there").c_str(), reason));
    EXPECT_STREQ(reason, L"");
    EXPECT_EQ(test_file_read(folder.file(L"there")), "old");
    EXPECT_EQ(test_folder_list(folder.path), names({L"there"}));
}

TEST(WholeFile, AFileThatMayNotBeWrittenIsRefused) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"a.bin");
    test_file_write(path, "old");
    fs::permissions(fs::path(path), fs::perms::owner_read);
    if (platform_file_is_writable(path.c_str())) {
        fs::permissions(fs::path(path), fs::perms::owner_all);
        GTEST_SKIP() << "this user may write every file";
    }
    WholeFile whole;
    EXPECT_FALSE(whole_file_open(&whole, path.c_str(), "wb"));
    EXPECT_STRNE(whole.reason, L"");
    wchar_t reason[WHOLE_FILE_REASON_SIZE] = {};
    EXPECT_FALSE(whole_file_try(path.c_str(), reason));
    EXPECT_STREQ(whole.reason, reason);
    EXPECT_EQ(test_file_read(path), "old");
    fs::permissions(fs::path(path), fs::perms::owner_all);
}

#ifndef _WIN32

TEST(WholeFile, SymbolicLinksAreFollowed) {
    const TemporaryFolder folder;
    fs::create_directory(fs::path(folder.file(L"sub")));
    test_file_write(folder.file(L"sub/there"), "old");
    fs::create_symlink("sub/there", fs::path(folder.file(L"one")));
    fs::create_symlink("one", fs::path(folder.file(L"two")));
    fs::create_symlink("sub/new", fs::path(folder.file(L"dangling")));
    for (const auto &[link, target] : {std::pair(L"two", L"sub/there"), std::pair(L"dangling", L"sub/new")}) {
        WholeFile whole;
        ASSERT_TRUE(whole_file_open(&whole, folder.file(link).c_str(), "wb"));
        std::fputs("new", whole.file);
        EXPECT_TRUE(whole_file_commit(&whole));
        EXPECT_TRUE(fs::is_symlink(fs::path(folder.file(link)))) << "the link stays a link";
        EXPECT_EQ(test_file_read(folder.file(target)), "new");
    }
    EXPECT_EQ(test_folder_list(folder.file(L"sub")), names({L"new", L"there"}));
}

TEST(WholeFile, ALinkToItselfIsReplaced) {
    const TemporaryFolder folder;
    fs::create_symlink("loop", fs::path(folder.file(L"loop")));
    WholeFile whole;
    ASSERT_TRUE(whole_file_open(&whole, folder.file(L"loop").c_str(), "wb"));
    EXPECT_TRUE(whole_file_commit(&whole));
}

TEST(WholeFile, DevicesAreWrittenDirectly) {
    const TemporaryFolder folder;
    WholeFile whole;
    ASSERT_TRUE(whole_file_open(&whole, L"/dev/null", "wb"));
    std::fputs("x", whole.file);
    EXPECT_TRUE(whole_file_commit(&whole));

    const std::wstring path = folder.file(L"full");
    fs::create_symlink("/dev/full", fs::path(path));
    wchar_t reason[WHOLE_FILE_REASON_SIZE] = {};
    EXPECT_TRUE(whole_file_try(path.c_str(), reason)) << "a device is not written to for a try";
    ASSERT_TRUE(whole_file_open(&whole, path.c_str(), "wb"));
    std::fputs("x", whole.file);
    EXPECT_FALSE(whole_file_commit(&whole));
    EXPECT_STREQ(whole.reason, L"No space left on device");
    EXPECT_TRUE(fs::is_symlink(fs::path(path)));
    EXPECT_TRUE(fs::exists("/dev/full"));
}

TEST(WholeFile, TheNewFileHasThePermissionsOfTheOldOne) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"a.bin");
    test_file_write(path, "old");
    const fs::perms own = fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(fs::path(path), own);
    WholeFile whole;
    ASSERT_TRUE(whole_file_open(&whole, path.c_str(), "wb"));
    ASSERT_TRUE(whole_file_commit(&whole));
    EXPECT_EQ(fs::status(fs::path(path)).permissions(), own);
}

#endif
