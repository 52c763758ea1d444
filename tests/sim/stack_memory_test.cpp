// Lack of memory at any allocation of set-up ends the program in one place, with one message.
#include <gtest/gtest.h>

#include <cstdlib>

#include "log/log.h"
#include "platform/memory.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

static constexpr int EXIT_CREATED = 7;

// Runs set-up with so many allocations allowed.
[[noreturn]] static void create_and_exit(const wchar_t *path, const GdsDatabase *layout, i64 allocations) {
    memory_set_failure_hook(nullptr);
    // Else hints are kept for a console, which does without those that it has no memory for.
    diagnostic_set_sink([](const wchar_t *) {});
    memory_trip_after(allocations);
    const Owned<Stack> stack(stack_create(path, layout));
    std::_Exit(stack != nullptr ? EXIT_CREATED : 0);
}

// The fewest allocations with which set-up comes to its end.
static i64 count_allocations(const wchar_t *path, const GdsDatabase *layout) {
    i64 too_few = -1;
    i64 enough = 1 << 16;
    while (enough - too_few > 1) {
        const i64 middle = (too_few + enough) / 2;
        bool created = false;
        auto note = [&created](int status) {
            created = ::testing::ExitedWithCode(EXIT_CREATED)(status);
            return true;
        };
        EXPECT_EXIT(create_and_exit(path, layout, middle), note, "");
        (created ? enough : too_few) = middle;
    }
    return enough;
}

TEST(StackCreateDeathTest, EveryFailedAllocationEndsTheProgram) {
    ::testing::GTEST_FLAG(death_test_style) = "fast";
    const Owned<GdsDatabase> layout = test_layout();
    test_cell_rectangle(test_cell(layout.get(), "TOP"), 7, {1000, 1000, 3000, 3000});
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"process.txt");
    test_file_write(
        path,
        "settings -version 3 -N 200\ngds -cell TOP\nlocation -x 0 -y 0 -dx 20 -dy 5\n"
        "deposition -name OX -type ox -thickness 100 -color 1 2 3 100\netch -targets ox -depth 50\n");
    const i64 total = count_allocations(path.c_str(), layout.get());
    EXPECT_GT(total, 30);
    EXPECT_LT(total, 1 << 16) << "set-up never came to its end";
    // All of the last thirty, where the tables are made, and some forty before.
    const i64 stride = total < 40 ? 1 : total / 40;
    for (i64 allowed = 0; allowed < total; allowed += allowed < total - 30 ? stride : 1) {
        EXPECT_EXIT(create_and_exit(path.c_str(), layout.get(), allowed),
                    ::testing::ExitedWithCode(TEST_OUT_OF_MEMORY), "Memory (re)?allocation error")
            << allowed << " of " << total << " allocations allowed";
    }
}
