#include <gtest/gtest.h>

#include <cstring>

#include "platform/memory_ahead.h"

static constexpr i64 MEGABYTES = i64{1} << 20;

TEST(MemoryAhead, BytesStayAsTheyAreWhilePagesAreMadeReady) {
    const Owned<MemoryAhead> ahead(memory_ahead_create());
    const i64 size = 24 * MEGABYTES;
    const auto block = memory_scratch<u8>(size);
    for (i64 at = 0; at < size; at += MEGABYTES) {
        memory_ahead_ask(ahead.get(), block.get() + at, MEGABYTES);
        std::memset(block.get() + at, static_cast<int>(at / MEGABYTES + 1), static_cast<size_t>(MEGABYTES));
    }
    memory_ahead_settle(ahead.get());
    for (i64 i = 0; i < size; ++i) {
        ASSERT_EQ(block[i], i / MEGABYTES + 1) << "byte " << i;
    }
}

TEST(MemoryAhead, BlocksCanBeMovedAndFreedOnceItHasSettled) {
    const i64 before = memory_live_blocks();
    {
        const Owned<MemoryAhead> ahead(memory_ahead_create());
        for (i32 i = 0; i < 50; ++i) {
            Owned<u8[]> block = memory_scratch<u8>(MEGABYTES);
            memory_ahead_ask(ahead.get(), block.get(), MEGABYTES);
            block[MEGABYTES - 1] = 7;
            memory_ahead_settle(ahead.get());
            ASSERT_TRUE(memory_try_resize(&block, 3 * MEGABYTES));
            memory_ahead_ask(ahead.get(), block.get(), 3 * MEGABYTES);
            EXPECT_EQ(block[MEGABYTES - 1], 7);
            memory_ahead_settle(ahead.get());
        }
    }
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(MemoryAhead, PartsOfAPageAndTooManyAreForgotten) {
    const Owned<MemoryAhead> ahead(memory_ahead_create());
    const auto block = memory_scratch<u8>(MEGABYTES);
    std::memset(block.get(), 9, static_cast<size_t>(MEGABYTES));
    for (i64 i = 0; i < 1000; ++i) {
        memory_ahead_ask(ahead.get(), block.get() + i, i * 1000);
    }
    memory_ahead_settle(ahead.get());
    for (i64 i = 0; i < MEGABYTES; ++i) {
        ASSERT_EQ(block[i], 9) << "byte " << i;
    }
}

TEST(MemoryAhead, NullDoesNothing) {
    u8 byte = 3;
    memory_ahead_ask(nullptr, &byte, 1);
    memory_ahead_settle(nullptr);
    memory_ahead_free(nullptr);
    EXPECT_EQ(byte, 3);
}
