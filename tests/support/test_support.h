// test_support.h: what the tests of every folder share: temporary folders, captured console text,
// whole files and random numbers. Link quarn_test_support. A failure of the helpers themselves (no
// temporary folder, a file that cannot be read) fails the running test with a message.
//
// A suite with EXPECT_EXIT has a name that ends in DeathTest: such suites run first, before the graphics
// driver has started threads of its own, which do not survive the fork that EXPECT_EXIT makes.
#pragma once
#include <string>
#include <vector>
#include "platform/base.h"

// What a program that lacks memory ends with, -1, as the system tells it.
#ifdef _WIN32
inline constexpr int TEST_OUT_OF_MEMORY = -1;
#else
inline constexpr int TEST_OUT_OF_MEMORY = 255;
#endif

// First in a test whose EXPECT_EXIT depend on how the ones before ended: without fork the program that dies
// comes there from its own start, and does not know.
#ifdef _WIN32
#define TEST_NEEDS_FORK() GTEST_SKIP() << "needs fork"
#else
#define TEST_NEEDS_FORK() static_cast<void>(0)
#endif

// An empty folder of its own in the system's folder for temporary files, deleted with everything in
// it when the record goes out of scope. Declare one per test: `TemporaryFolder folder;`
struct TemporaryFolder {
    std::wstring path;  // absolute, without a separator at the end; empty when creation failed

    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    // The path of `name` inside the folder. The file need not exist.
    std::wstring file(const std::wstring &name) const;
};

// Makes `path` the current folder of the program until the record goes out of scope, for code that
// reads or writes in the current folder.
struct CurrentFolder {
    explicit CurrentFolder(const std::wstring &path);
    ~CurrentFolder();
    CurrentFolder(const CurrentFolder &) = delete;
    CurrentFolder &operator=(const CurrentFolder &) = delete;

    std::string previous;  // UTF-8
};

// Gathers what goes to the console, to message boxes and to the diagnostics while the record is in
// scope; afterwards the sinks are null again. At most one at a time. Any thread may write meanwhile.
struct ConsoleCapture {
    ConsoleCapture();
    ~ConsoleCapture();
    ConsoleCapture(const ConsoleCapture &) = delete;
    ConsoleCapture &operator=(const ConsoleCapture &) = delete;

    std::wstring wide() const;    // what the console shows: everything since the last console_clear
    std::string narrow() const;   // the same as UTF-8
    std::string history() const;  // everything since the start or `reset`, as UTF-8: clearing keeps it

    i32 clear_count() const;          // calls of console_clear
    std::string messages() const;     // each message box followed by "\n", UTF-8
    std::string diagnostics() const;  // each diagnostic line followed by "\n", UTF-8
    void reset();                     // forgets all of the above
};

// Wide text as UTF-8. 16-bit surrogate pairs are joined; a lone surrogate becomes "?".
std::string test_utf8(const std::wstring &text);

// UTF-8 as wide text, for paths and expected texts; only for well-formed input.
std::wstring test_wide(const std::string &text);

// What the platform makes of a text at the border to the system.
std::wstring test_wide_from_system(const std::string &bytes);
std::string test_system_from_wide(const std::wstring &text);

// Whole files as bytes. Writing replaces the file; reading one that is missing fails the test and
// gives an empty text.
void test_file_write(const std::wstring &path, const std::string &bytes);
std::string test_file_read(const std::wstring &path);
std::string test_text_read(const std::wstring &path);  // the same without carriage returns
bool test_file_exists(const std::wstring &path);

// Names (without the folder) of what lies in a folder, sorted by code unit.
std::vector<std::wstring> test_folder_list(const std::wstring &path);

// The bits of a number, so that nan equals nan and 0 differs from -0.
u32 test_f32_bits(f32 value);

// Random numbers that are the same on every machine for the same seed.
struct TestRandom {
    u64 state;
};

TestRandom test_random_start(u64 seed);
u32 test_random_u32(TestRandom *random);
i32 test_random_i32(TestRandom *random, i32 low, i32 high);  // low to high, both possible
f32 test_random_f32(TestRandom *random, f32 low,
                    f32 high);  // low to below high, in steps of the range / 2^24
bool test_random_bool(TestRandom *random, f64 probability);  // true with that probability
