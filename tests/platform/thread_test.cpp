#include <gtest/gtest.h>

#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/thread_context.h"

static i32 doubled(void *argument) {
    i32 *value = static_cast<i32 *>(argument);
    *value *= 2;
    return *value + 1;
}

TEST(PlatformThread, RunsTheFunctionAndGivesItsResult) {
    const i64 blocks = memory_live_blocks();
    i32 value = -21;
    PlatformThread *thread = platform_thread_start(doubled, &value);
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(platform_thread_join(thread), -41);
    EXPECT_EQ(value, -42);
    EXPECT_EQ(memory_live_blocks(), blocks);
}

struct PingPong {
    PlatformSemaphore *ping;
    PlatformSemaphore *pong;
    i32 turns;  // written only by the thread whose turn it is
};

static i32 answer(void *argument) {
    auto *game = static_cast<PingPong *>(argument);
    for (i32 i = 0; i < 1000; ++i) {
        platform_semaphore_wait(game->ping);
        ++game->turns;
        platform_semaphore_post(game->pong);
    }
    return game->turns;
}

TEST(PlatformSemaphore, HandsTurnsOver) {
    const Owned<PlatformSemaphore> ping(platform_semaphore_create());
    const Owned<PlatformSemaphore> pong(platform_semaphore_create());
    PingPong game = {ping.get(), pong.get(), 0};
    PlatformThread *thread = platform_thread_start(answer, &game);
    ASSERT_NE(thread, nullptr);
    for (i32 i = 0; i < 1000; ++i) {
        ASSERT_EQ(game.turns, 2 * i);
        ++game.turns;
        platform_semaphore_post(game.ping);
        platform_semaphore_wait(game.pong);
    }
    EXPECT_EQ(platform_thread_join(thread), 2000);
}

TEST(PlatformSemaphore, CountsPosts) {
    const Owned<PlatformSemaphore> semaphore(platform_semaphore_create());
    for (i32 i = 0; i < 5; ++i) {
        platform_semaphore_post(semaphore.get());
    }
    for (i32 i = 0; i < 5; ++i) {
        platform_semaphore_wait(semaphore.get());  // none of them blocks
    }
    platform_semaphore_free(nullptr);
}

TEST(PlatformSemaphore, WaitsNoLongerThanAllowed) {
    PlatformSemaphore *semaphore = platform_semaphore_create();
    const f64 start_ms = platform_clock_ms();
    EXPECT_FALSE(platform_semaphore_wait_for(semaphore, 50));
    EXPECT_GE(platform_clock_ms() - start_ms, 45.0) << "clocks differ in their steps";
    platform_semaphore_post(semaphore);
    EXPECT_TRUE(platform_semaphore_wait_for(semaphore, 60000));
    EXPECT_FALSE(platform_semaphore_wait_for(semaphore, 0)) << "the post is used up";
    platform_semaphore_free(semaphore);
}

static i32 keep_context(void *argument) {
    *static_cast<void **>(argument) = thread_context();
    thread_context_set(nullptr);
    return 0;
}

static void *context_of_new_thread() {
    void *seen = &seen;
    PlatformThread *thread = platform_thread_start(keep_context, &seen);
    EXPECT_NE(thread, nullptr);
    if (thread != nullptr) {
        platform_thread_join(thread);
    }
    return seen;
}

TEST(ThreadContext, IsInheritedByTheThreadsThatAThreadStarts) {
    EXPECT_EQ(thread_context(), nullptr);
    EXPECT_EQ(context_of_new_thread(), nullptr);
    i32 mine = 0;
    thread_context_set(&mine);
    EXPECT_EQ(context_of_new_thread(), &mine);
    EXPECT_EQ(thread_context(), &mine);  // what the other thread does to its own changes nothing here
    thread_context_set(nullptr);
}
