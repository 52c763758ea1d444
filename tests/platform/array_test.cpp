#include <gtest/gtest.h>

#include "platform/owned.h"
#include "tests/support/test_support.h"

TEST(ArrayAppend, StartsAtTheFirstCapacityAndDoubles) {
    Owned<i32[]> items;
    i32 count = 0;
    i32 capacity = 0;
    for (i32 i = 0; i < 2000; ++i) {
        array_append(&items, &count, &capacity, i * 3);
        // 512 until it is full, then 1024 for the 513th item, 2048 for the 1025th.
        const i32 expected = i < 512 ? 512 : i < 1024 ? 1024 : 2048;
        ASSERT_EQ(capacity, expected) << "after item " << i;
        ASSERT_EQ(count, i + 1);
    }
    for (i32 i = 0; i < 2000; ++i) {
        ASSERT_EQ(items[i], i * 3);
    }
}

TEST(ArrayAppend, TakesAnotherFirstCapacity) {
    Owned<u8[]> items;
    i32 count = 0;
    i32 capacity = 0;
    array_append(&items, &count, &capacity, u8{1}, 3);
    EXPECT_EQ(capacity, 3);
    array_append(&items, &count, &capacity, u8{2}, 3);
    array_append(&items, &count, &capacity, u8{3}, 3);
    EXPECT_EQ(capacity, 3);
    array_append(&items, &count, &capacity, u8{4}, 3);
    EXPECT_EQ(capacity, 6);
}

TEST(ArrayAppend, TakesAnItemOfTheArrayItself) {
    Owned<i64[]> items;
    i32 count = 0;
    i32 capacity = 0;
    array_append(&items, &count, &capacity, i64{42}, 1);
    for (i32 i = 0; i < 40; ++i) {
        array_append(&items, &count, &capacity, items[0], 1);  // the block moves on the way
    }
    for (i32 i = 0; i < count; ++i) {
        EXPECT_EQ(items[i], 42) << "at " << i;
    }
}

TEST(ArrayReserveOne, MakesTheArrayOfACapacityWithoutBlock) {
    i32 capacity = 16;
    const Owned<i32[]> items(static_cast<i32 *>(array_reserve_one(nullptr, 0, &capacity, 4, 512)));
    EXPECT_NE(items, nullptr);
    EXPECT_EQ(capacity, 16);
    EXPECT_EQ(array_reserve_one(items.get(), 15, &capacity, 4, 512), items.get()) << "one more fits";
    EXPECT_EQ(capacity, 16);
}

TEST(ArrayReserveOne, DoublesAtMostToTheLargestCount) {
    i32 capacity = (1 << 30) + 5;
    auto items = memory_scratch<u8>(0);
    items.reset(
        static_cast<u8 *>(array_reserve_one(items.release(), capacity, &capacity, 0, 512)));  // no size
    EXPECT_EQ(capacity, I32_MAX);
}

TEST(ArrayReserveOneDeathTest, MoreItemsThanCanBeCountedAreLackOfMemory) {
    i32 capacity = I32_MAX;
    const auto items = memory_scratch<u8>(0);
    EXPECT_EXIT(array_reserve_one(items.get(), I32_MAX, &capacity, 0, 512),
                testing::ExitedWithCode(TEST_OUT_OF_MEMORY), "Memory reallocation error");
}
