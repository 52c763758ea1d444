// An interrupt during set-up ends it soon, wherever it comes, without a leak and without a word of its own.
#include <gtest/gtest.h>

#include "log/log.h"
#include "platform/memory.h"
#include "platform/platform.h"
#include "sim/kernels/offsets_sorted.h"
#include "sim/stack_setup.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

static std::atomic<i32> interrupted{0};
static std::string trigger;  // a part of the console text at which the interrupt comes
static std::string shown;

static void append_and_interrupt(const wchar_t *text) {
    for (; *text != 0; ++text) {
        shown += static_cast<char>(*text);
    }
    if (shown.find(trigger) != std::string::npos) {
        interrupted = 1;
    }
}

// Set-up with an interrupt at that text. Returns whether a stack was made.
static bool create_with_interrupt(const std::string &text) {
    const Owned<GdsDatabase> layout = test_layout();
    test_cell_rectangle(test_cell(layout.get(), "TOP"), 7, {1000, 1000, 3000, 3000});
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"process.txt");
    test_file_write(path, "settings -version 3 -N 200\ngds -cell TOP\nlocation -x 0 -y 0 -dx 20 -dy 5\n");
    trigger = text;
    shown.clear();
    interrupted = 0;
    platform_interrupt_watch(&interrupted, nullptr);
    console_set_sink(append_and_interrupt, nullptr);
    diagnostic_set_sink([](const wchar_t *) {});  // or the hints would wait for a console
    const Owned<Stack> stack(stack_create(path.c_str(), layout.get()));
    console_set_sink(nullptr, nullptr);
    diagnostic_set_sink(nullptr);
    platform_interrupt_watch(nullptr, nullptr);
    return stack != nullptr;
}

TEST(StackCreateInterrupt, EndsSetUpWhereverItComes) {
    const i64 blocks = memory_live_blocks();
    for (const char *text : {"Successfully read process file", "Extracting polygons", "Found 1 polygons",
                             "Grid spacing", "GDS cell: TOP"}) {
        EXPECT_FALSE(create_with_interrupt(text)) << text;
        EXPECT_EQ(interrupted, 1) << text;
        EXPECT_EQ(shown.find("ERROR"), std::string::npos) << shown;
        EXPECT_EQ(memory_live_blocks(), blocks) << text;
    }
    EXPECT_TRUE(create_with_interrupt("this is never shown"));
}

TEST(StackCreateInterrupt, BeforeTheProcessFileSaysNothing) {
    EXPECT_FALSE(create_with_interrupt(""));  // the first text of all: that the file has been read
    EXPECT_EQ(shown.find("failed"), std::string::npos) << shown;
}

TEST(OffsetsInterrupt, LeaveTheTableUnsorted) {
    i32 count = 0;
    const Owned<GridOffset[]> offsets = offsets_create(200, 50, 0.1F, &count);
    ASSERT_EQ(count, 399 * 99);
    const GridOffset first = offsets[0];
    interrupted = 1;
    platform_interrupt_watch(&interrupted, nullptr);
    offsets_sort_by_distance(offsets.get(), count);
    platform_interrupt_watch(nullptr, nullptr);
    EXPECT_EQ(offsets[0].dx, first.dx);
    EXPECT_EQ(offsets[0].dy, first.dy);
    offsets_sort_by_distance(offsets.get(), count);
    EXPECT_EQ(offsets[0].distance, 0.0F);
}

TEST(OffsetsInterrupt, NoSortedTableIsMadeOfHalfAQuarter) {
    i32 count = 0;
    interrupted = 1;
    platform_interrupt_watch(&interrupted, nullptr);
    const Owned<GridOffset[]> offsets = offsets_create_sorted(200, 50, 0.1F, &count);
    platform_interrupt_watch(nullptr, nullptr);
    EXPECT_NE(offsets, nullptr);
    EXPECT_EQ(count, 399 * 99) << "all that is told of it";
}
