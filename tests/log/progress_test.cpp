// Tests of log/progress.h.
#include "log/progress.h"

#include <gtest/gtest.h>

#include "tests/support/test_support.h"

static std::wstring shown;

static void take(const wchar_t *line) {
    shown += line != nullptr ? std::wstring(line) + L"|" : L"clear|";
}

struct ProgressFixture {
    ProgressFixture() {
        shown.clear();
        progress_set_sink(take);
    }
    ~ProgressFixture() { progress_set_sink(nullptr); }
};

TEST(Progress, GoesToTheSinkAndNowhereWithoutOne) {
    shown.clear();
    EXPECT_FALSE(progress_is_seen());
    progress_show(L"step %d", 1);
    progress_show_share(L"reading", 1, 2);
    progress_clear();
    EXPECT_EQ(shown, L"");
    const ProgressFixture fixture;
    EXPECT_TRUE(progress_is_seen());
    progress_show(L"step %d of %ls", 1, L"many");
    progress_clear();
    EXPECT_EQ(shown, L"step 1 of many|clear|");
}

TEST(Progress, AShareIsShownWhenItsFigureChanges) {
    const ProgressFixture fixture;
    progress_show_share(L"reading", 0, 400);
    progress_show_share(L"reading", 3, 400);  // 0.75 %
    progress_show_share(L"reading", 4, 400);
    progress_show_share(L"reading", 400, 400);
    progress_show_share(L"reading", 500, 400);  // a file that has grown since
    EXPECT_EQ(shown, L"reading: 0 %|reading: 1 %|reading: 100 %|");
    shown.clear();
    progress_show_share(L"reading", 5, 0);
    progress_show_share(L"reading", 5, -1);
    EXPECT_EQ(shown, L"") << "of a pipe nobody knows the size";
    progress_show(L"other");
    progress_show_share(L"reading", 400, 400);
    EXPECT_EQ(shown, L"other|reading: 100 %|") << "another text has taken its place";
}

TEST(Progress, LargeFilesHaveSharesToo) {
    const ProgressFixture fixture;
    progress_show_share(L"reading", I64_MAX / 2, I64_MAX);
    EXPECT_EQ(shown, L"reading: 50 %|");
}
