#include "platform/owned.h"

#include <gtest/gtest.h>

#include <cstring>
#include <utility>

#include "platform/owned_file.h"
#include "platform/platform.h"
#include "tests/support/test_support.h"

// A record whose free is its own.
struct Counted {
    i32 *frees;
};

template <>
struct Freed<Counted> {
    void operator()(Counted *counted) const {
        ++*counted->frees;
        memory_free(counted);
    }
};

static Owned<Counted> new_counted(i32 *frees) {
    Owned<Counted> counted(memory_new_zeroed<Counted>());
    counted->frees = frees;
    return counted;
}

TEST(Owned, FreesWhatItOwnsAtTheEndOfItsScope) {
    const i64 before = memory_live_blocks();
    {
        const auto array = memory_scratch<i32>(1000);
        const auto empty = memory_scratch<i32>(0);
        const WideText text(memory_new_zeroed<wchar_t>(4));
        const Owned<i32[]> nothing;
        EXPECT_EQ(memory_live_blocks(), before + 3);
        EXPECT_NE(empty, nullptr) << "a block of no bytes is a block";
        EXPECT_EQ(nothing, nullptr);
    }
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(Owned, ARecordIsFreedByItsOwnFunctionOnce) {
    const i64 before = memory_live_blocks();
    i32 frees = 0;
    {
        const Owned<Counted> counted = new_counted(&frees);
        EXPECT_EQ(frees, 0) << "handing over frees nothing";
    }
    EXPECT_EQ(frees, 1);
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(Owned, MovingLeavesNothingBehind) {
    i32 frees = 0;
    Owned<Counted> first = new_counted(&frees);
    const Counted *record = first.get();
    Owned<Counted> second = std::move(first);
    EXPECT_EQ(first, nullptr);  // NOLINT(bugprone-use-after-move): what a move leaves is told
    EXPECT_EQ(second.get(), record);
    second = new_counted(&frees);
    EXPECT_EQ(frees, 1) << "the record before is freed";
    second.reset();
    EXPECT_EQ(frees, 2);
}

TEST(Owned, ReleaseHandsTheBlockOver) {
    const i64 before = memory_live_blocks();
    i32 *kept = nullptr;
    {
        auto array = memory_scratch<i32>(2);
        array[1] = 7;
        kept = array.release();
        EXPECT_EQ(array, nullptr);
    }
    EXPECT_EQ(memory_live_blocks(), before + 1);
    EXPECT_EQ(kept[1], 7);
    memory_free(kept);
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(MemoryScratch, ZeroedIsZero) {
    const auto zeroed = memory_scratch_zeroed<u64>(1000);
    for (i32 i = 0; i < 1000; ++i) {
        ASSERT_EQ(zeroed[i], 0U) << "at " << i;
    }
}

TEST(MemoryScratchDeathTest, LackOfMemoryEndsTheProgram) {
    EXPECT_EXIT(memory_scratch<i32>(-1), testing::ExitedWithCode(TEST_OUT_OF_MEMORY),
                "Memory allocation error");
    EXPECT_EXIT(memory_scratch_zeroed<i32>(I64_MAX), testing::ExitedWithCode(TEST_OUT_OF_MEMORY),
                "Memory allocation error");
}

TEST(OwnedArrayAppend, GrowsAndIsFreed) {
    const i64 before = memory_live_blocks();
    {
        Owned<i32[]> items;
        i32 count = 0;
        i32 capacity = 0;
        for (i32 i = 0; i < 5; ++i) {
            array_append(&items, &count, &capacity, i, 2);
        }
        EXPECT_EQ(count, 5);
        EXPECT_EQ(capacity, 8);  // 2, 4, 8
        EXPECT_EQ(items[4], 4);
        EXPECT_EQ(memory_live_blocks(), before + 1);
    }
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(OwnedFile, IsClosedAtTheEndOfItsScope) {
    const TemporaryFolder folder;
    {
        const OwnedFile file(platform_file_open(folder.file(L"a").c_str(), "wb"));
        ASSERT_NE(file, nullptr);
        std::fputs("text", file.get());
        EXPECT_EQ(test_file_read(folder.file(L"a")), "") << "still in the file's own buffer";
    }
    EXPECT_EQ(test_file_read(folder.file(L"a")), "text");
    const OwnedFile none(platform_file_open(folder.file(L"missing").c_str(), "rb"));
    EXPECT_EQ(none, nullptr);
}
