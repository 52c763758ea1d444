#include "platform/thread_role.h"

#include <gtest/gtest.h>

#include "platform/platform.h"

// Each case runs on a thread of its own, so that no role stays with the tests' thread.
static i32 check_unnamed(void *) {
    EXPECT_TRUE(thread_role_fits(THREAD_UNNAMED));
    EXPECT_TRUE(thread_role_fits(THREAD_WINDOW)) << "who has said nothing may be anyone";
    EXPECT_TRUE(thread_role_fits(THREAD_WORKER));
    return 0;
}

static i32 check_named(void *role) {
    const ThreadRole own = *static_cast<ThreadRole *>(role);
    const ThreadRole other = own == THREAD_WINDOW ? THREAD_WORKER : THREAD_WINDOW;
    thread_role_set(own);
    EXPECT_TRUE(thread_role_fits(own));
    EXPECT_FALSE(thread_role_fits(other));
    thread_role_set(THREAD_UNNAMED);
    EXPECT_TRUE(thread_role_fits(other)) << "a role can be laid down";
    thread_role_set(own);  // ends with the thread
    return 0;
}

static void run_on_thread(PlatformThreadFunction function, void *argument) {
    PlatformThread *thread = platform_thread_start(function, argument);
    ASSERT_NE(thread, nullptr);
    platform_thread_join(thread);
}

TEST(ThreadRole, AThreadWithoutOneFitsAll) {
    run_on_thread(check_unnamed, nullptr);
}

TEST(ThreadRole, EachThreadHasItsOwn) {
    ThreadRole window = THREAD_WINDOW;
    ThreadRole worker = THREAD_WORKER;
    run_on_thread(check_named, &window);
    run_on_thread(check_named, &worker);
    run_on_thread(check_unnamed, nullptr);
    EXPECT_TRUE(thread_role_fits(THREAD_WINDOW)) << "the thread of the tests has none";
    EXPECT_TRUE(thread_role_fits(THREAD_WORKER));
}
