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

TEST(WideFromBytes, ReadsUtf8AndTakesOtherBytesAsLatin1) {
    const struct {
        const char *bytes;
        const wchar_t *text;
    } cases[] = {
        {"", L""},
        {"SiO2", L"SiO2"},
        {"\xC3\x96L \xE2\x82\xAC", L"\u00D6L \u20AC"},
        {"\xD6L", L"\u00D6L"},                    // Latin-1
        {"\xE2\x82", L"\u00E2\u0082"},            // cut off
        {"\xED\xA0\x80", L"\u00ED\u00A0\u0080"},  // half a pair is no character
        {"\xF0\x9F\x98\x80", L"\U0001F600"},
    };
    for (const auto &c : cases) {
        EXPECT_STREQ(wide_from_bytes(c.bytes).get(), c.text);
    }
}
