#include <gtest/gtest.h>

#include <cstring>

#include "gds/gds_store.h"
#include "platform/memory.h"

TEST(GdsStore, RoomIsTheSameUntilItIsTaken) {
    GdsStore store = {};
    void *room = gds_store_room(&store, 100);
    EXPECT_EQ(gds_store_room(&store, 16), room);
    EXPECT_EQ(gds_store_take(&store, 13), room);
    // 13 bytes take 16, so that what follows is aligned.
    EXPECT_EQ(gds_store_room(&store, 8), static_cast<u8 *>(room) + 16);
    gds_store_clear(&store);
}

TEST(GdsStore, WhatWasTakenStaysWhenBlocksAreAdded) {
    const i64 before = memory_live_blocks();
    GdsStore store = {};
    const i64 size = 100003;
    u8 *pieces[100];
    for (i32 i = 0; i < 100; ++i) {
        pieces[i] = static_cast<u8 *>(gds_store_take(&store, size));
        EXPECT_EQ(reinterpret_cast<u64>(pieces[i]) % 8, 0U);
        std::memset(pieces[i], i, static_cast<size_t>(size));
    }
    for (i32 i = 0; i < 100; ++i) {
        EXPECT_EQ(pieces[i][0], i);
        EXPECT_EQ(pieces[i][size - 1], i);
    }
    EXPECT_LT(memory_live_blocks() - before, 12) << "blocks double";
    gds_store_clear(&store);
    EXPECT_EQ(memory_live_blocks(), before);
    EXPECT_EQ(store.blocks, nullptr);
}

// Blocks of which the pages are made ready ahead hold the same.
TEST(GdsStore, InAHurryNothingIsDifferent) {
    const i64 before = memory_live_blocks();
    GdsStore store = {};
    store.in_a_hurry = true;
    const i64 size = i64{1} << 20;
    u8 *pieces[40];
    for (i32 i = 0; i < 40; ++i) {
        pieces[i] = static_cast<u8 *>(gds_store_take(&store, size));
        std::memset(pieces[i], i, static_cast<size_t>(size));
    }
    gds_store_rest(&store);
    EXPECT_EQ(store.ahead, nullptr);
    EXPECT_EQ(store.spare, nullptr);
    for (i32 i = 0; i < 40; ++i) {
        EXPECT_EQ(pieces[i][0], i);
        EXPECT_EQ(pieces[i][size - 1], i);
    }
    gds_store_clear(&store);
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(GdsStore, APieceCanBeLargerThanAnyBlock) {
    GdsStore store = {};
    const i64 size = i64{40} << 20;
    auto *piece = static_cast<u8 *>(gds_store_take(&store, size));
    piece[0] = 1;
    piece[size - 1] = 2;
    gds_store_clear(&store);
}
