// Lack of memory in any function that writes ends the program with a message and the exit code -1,
// which a parent process sees as 255.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "log/log.h"
#include "log/text.h"
#include "platform/owned.h"
#include "tests/support/test_support.h"

static void write_nothing(const wchar_t *) {}

static void clear_nothing() {}

static void show_on_standard_error(const wchar_t *text) {
    std::fprintf(stderr, "box: %s\n", test_utf8(text).c_str());
}

struct Writer {
    const char *name;
    void (*write)(const wchar_t *wide, const char *narrow);
};

static const Writer WRITERS[] = {
    {"log_write", [](const wchar_t *wide, const char *) { log_write(L"%ls", wide); }},
    {"console_printf_w", [](const wchar_t *wide, const char *) { console_printf_w(L"%ls", wide); }},
    {"console_printf", [](const wchar_t *, const char *narrow) { console_printf("%s", narrow); }},
    {"console_append_narrow", [](const wchar_t *, const char *narrow) { console_append_narrow(narrow); }},
    {"diagnostic_write", [](const wchar_t *wide, const char *) { diagnostic_write(L"%ls", wide); }},
};

static void write_with_trip(const Writer &writer, const wchar_t *wide, const char *narrow, i64 trip) {
    memory_trip_after(trip);
    writer.write(wide, narrow);
    std::fprintf(stderr, "done");
    std::_Exit(0);
}

// Makes one allocation after the other fail, until all succeed. Returns how many were made to fail.
static i64 trip_every_allocation(const Writer &writer, const wchar_t *wide, const char *narrow) {
    i64 trip = 0;
    for (bool done = false; !done; ++trip) {
        auto ends_well = [&done](int status) {
            done = testing::ExitedWithCode(0)(status);
            return done || testing::ExitedWithCode(TEST_OUT_OF_MEMORY)(status);
        };
        // Only the program that ends with 0 is done.
        EXPECT_EXIT(write_with_trip(writer, wide, narrow, trip), ends_well,
                    "^box: Memory allocation error\n$|^done$")
            << writer.name << ", allocation " << trip;
        if (testing::Test::HasFailure()) {
            break;
        }
    }
    return trip - 1;
}

TEST(OutOfMemoryDeathTest, EveryAllocationOfEveryWriterEndsTheProgram) {
    TEST_NEEDS_FORK();
    const std::wstring long_wide(3000, L'w');
    const std::string long_narrow(3000, 'n');
    console_set_sink(write_nothing, clear_nothing);
    message_set_sink(show_on_standard_error);
    for (const Writer &writer : WRITERS) {
        EXPECT_GE(trip_every_allocation(writer, L"short", "short"), 1) << writer.name;
        EXPECT_GE(trip_every_allocation(writer, long_wide.c_str(), long_narrow.c_str()), 1) << writer.name;
    }
    console_set_sink(nullptr, nullptr);
    message_set_sink(nullptr);
}

TEST(OutOfMemoryDeathTest, WithoutASinkTheMessageGoesToStandardError) {
    EXPECT_EXIT(
        {
            memory_trip_after(0);
            console_printf("%d", 1);
        },
        testing::ExitedWithCode(TEST_OUT_OF_MEMORY), "Memory allocation error");
}

TEST(OutOfMemoryDeathTest, AnArrayThatCannotGrowSaysSo) {
    message_set_sink(show_on_standard_error);
    EXPECT_EXIT(
        {
            Owned<i32[]> items;
            i32 count = 0;
            i32 capacity = 0;
            memory_trip_after(0);
            array_append(&items, &count, &capacity, 1);
        },
        testing::ExitedWithCode(TEST_OUT_OF_MEMORY), "^box: Memory reallocation error\n$");
    message_set_sink(nullptr);
}
