#include "platform/owned.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "platform/owned_file.h"
#include "platform/platform.h"
#include "tests/support/test_support.h"

TEST(MemoryAllocate, GivesABlockAlsoForNoBytes) {
    const Owned<u8[]> empty(static_cast<u8 *>(memory_allocate(0, 8)));
    const Owned<u8[]> zeroed(static_cast<u8 *>(memory_allocate_zeroed(5, 0)));
    EXPECT_NE(empty, nullptr);
    EXPECT_NE(zeroed, nullptr);
}

TEST(MemoryAllocate, ZeroedBlocksAreZero) {
    const Owned<u64[]> block(memory_new_zeroed<u64>(1000));
    for (i32 i = 0; i < 1000; ++i) {
        ASSERT_EQ(block[i], 0U) << "at " << i;
    }
}

TEST(MemoryLiveBlocks, CountsWhatIsNotYetFreed) {
    const i64 before = memory_live_blocks();
    void *a = memory_allocate(1, 1);
    void *b = memory_allocate_zeroed(1, 1);
    void *c = memory_reallocate(nullptr, 1, 1);
    void *d = memory_try_allocate(1, 1);
    EXPECT_EQ(memory_live_blocks(), before + 4);
    c = memory_reallocate(c, 100, 1);
    EXPECT_EQ(memory_live_blocks(), before + 4) << "a block that grew is still one block";
    memory_free(a);
    memory_free(b);
    memory_free(c);
    memory_free(d);
    memory_free(nullptr);
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(MemoryReallocate, KeepsTheContent) {
    Owned<char[]> block(static_cast<char *>(memory_allocate(4, 1)));
    std::memcpy(block.get(), "abc", 4);
    block.reset(static_cast<char *>(memory_reallocate(block.release(), 100000, 1)));
    EXPECT_STREQ(block.get(), "abc");
}

TEST(MemoryTryAllocate, GivesNullForSizesThatCannotBe) {
    const struct {
        i64 count;
        size_t size;
    } cases[] = {{-1, 1}, {I64_MAX, 1}, {I64_MAX, 8}, {i64{1} << 40, size_t{1} << 40}, {2, SIZE_MAX}};
    for (const auto &c : cases) {
        EXPECT_EQ(memory_try_allocate(c.count, c.size), nullptr) << c.count << " x " << c.size;
        EXPECT_EQ(memory_try_reallocate(nullptr, c.count, c.size), nullptr) << c.count << " x " << c.size;
    }
}

TEST(MemoryTryReallocate, LeavesTheBlockWhenItFails) {
    const Owned<char[]> block(static_cast<char *>(memory_allocate(4, 1)));
    std::memcpy(block.get(), "abc", 4);
    EXPECT_EQ(memory_try_reallocate(block.get(), I64_MAX, 1), nullptr);
    EXPECT_STREQ(block.get(), "abc");
}

TEST(MemoryTripAfter, FailsOnceAndAtTheRightCall) {
    memory_trip_after(1);
    const Owned<u8[]> first(static_cast<u8 *>(memory_try_allocate(1, 1)));
    const Owned<u8[]> second(static_cast<u8 *>(memory_try_allocate(1, 1)));
    const Owned<u8[]> third(static_cast<u8 *>(memory_try_allocate(1, 1)));
    memory_trip_after(-1);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(second, nullptr);
    EXPECT_NE(third, nullptr);
}

// Each way to run out of memory and the words that tell of it.
static void fail_allocate() {
    memory_allocate(1, 1);
}

static void fail_zeroed() {
    memory_allocate_zeroed(1, 1);
}

static void fail_reallocate() {
    memory_reallocate(nullptr, 1, 1);
}

static void fail_append() {
    Owned<i32[]> items;
    i32 count = 0;
    i32 capacity = 0;
    array_append(&items, &count, &capacity, 7);
}

static void fail_end_program() {
    memory_end_program();
}

TEST(MemoryFailureDeathTest, EndsTheProgramWithItsMessage) {
    const struct {
        void (*fail)();
        const char *message;
    } cases[] = {
        {fail_allocate, "^Memory allocation error\n$"},     {fail_zeroed, "^Memory allocation error\n$"},
        {fail_reallocate, "^Memory reallocation error\n$"}, {fail_append, "^Memory reallocation error\n$"},
        {fail_end_program, "^Memory allocation error\n$"},
    };
    for (const auto &c : cases) {
        EXPECT_EXIT(
            {
                memory_trip_after(0);
                c.fail();
            },
            testing::ExitedWithCode(TEST_OUT_OF_MEMORY), c.message);
    }
}

static void allocating_hook(const char *message) {
    memory_scratch<u8>(1);
    std::fprintf(stderr, "told: %s", message);
}

TEST(MemoryFailureHookDeathTest, TellsTheUserAndMayAllocate) {
    EXPECT_EXIT(
        {
            memory_set_failure_hook(allocating_hook);
            memory_trip_after(0);
            memory_allocate(1, 1);
        },
        testing::ExitedWithCode(TEST_OUT_OF_MEMORY), "^told: Memory allocation error$");
}

TEST(MemoryFailureDeathTest, ASizeThatCannotBeIsLackOfMemory) {
    EXPECT_EXIT(memory_allocate(-1, 1), testing::ExitedWithCode(TEST_OUT_OF_MEMORY),
                "Memory allocation error");
    EXPECT_EXIT(memory_allocate_zeroed(I64_MAX, 16), testing::ExitedWithCode(TEST_OUT_OF_MEMORY),
                "Memory allocation error");
}

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
static i64 resident_pages() {
    const OwnedFile file(std::fopen("/proc/self/statm", "r"));
    long size = 0;
    long resident = 0;
    EXPECT_EQ(std::fscanf(file.get(), "%ld %ld", &size, &resident), 2);
    return resident;
}

// Blocks of 64 MB in all lie free under one that is kept, so that the library cannot give them back by
// itself.
TEST(MemoryGiveBack, TheSystemGetsWhatLiesFree) {
    constexpr i32 BLOCKS = 1000;
    constexpr size_t BLOCK_BYTES = 65536;
    std::vector<void *> blocks;
    for (i32 i = 0; i < BLOCKS; ++i) {
        blocks.push_back(memory_allocate(1, BLOCK_BYTES));
        std::memset(blocks.back(), 1, BLOCK_BYTES);
    }
    const Owned<u8[]> kept(static_cast<u8 *>(memory_allocate(1, BLOCK_BYTES)));
    for (void *block : blocks) {
        memory_free(block);
    }
    const i64 before = resident_pages();
    platform_memory_give_back();
    EXPECT_LT(resident_pages(), before - 8000) << "pages of 4 kB, of which the blocks had 16,000";
}
#endif

static void say_last_act() {
    std::fputs("last act\n", stderr);
    memory_end_program();  // a last act that lacks memory
}

TEST(MemoryLastActDeathTest, ComesAfterTheMessageAndMayLackMemory) {
    TEST_NEEDS_FORK();
    auto end = [] {
        memory_add_last_act(say_last_act);
        memory_end_program();
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(TEST_OUT_OF_MEMORY),
                "^Memory allocation error\nlast act\nMemory allocation error\n$");
}
