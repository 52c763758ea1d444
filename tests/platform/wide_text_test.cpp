#include "platform/wide_text.h"

#include <gtest/gtest.h>

TEST(WideCopy, IsABlockOfItsOwn) {
    const i64 before = memory_live_blocks();
    {
        const wchar_t source[] = L"a\u00E9 \u20AC";
        const WideText copy = wide_copy(source);
        EXPECT_STREQ(copy.get(), source);
        EXPECT_NE(copy.get(), source);
        EXPECT_STREQ(wide_copy(L"").get(), L"");
        EXPECT_EQ(memory_live_blocks(), before + 1);
    }
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(WideJoin, PutsOneTextBehindTheOther) {
    const struct {
        const wchar_t *start, *rest, *joined;
    } cases[] = {
        {L"", L"", L""}, {L"a", L"", L"a"}, {L"", L"b", L"b"}, {L"folder/", L"file.txt", L"folder/file.txt"}};
    for (const auto &c : cases) {
        EXPECT_STREQ(wide_join(c.start, c.rest).get(), c.joined);
    }
}
