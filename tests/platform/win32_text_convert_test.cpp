#include <gtest/gtest.h>

#include <string>

#include "platform/memory.h"
#include "platform/platform.h"
#include "tests/support/test_support.h"

TEST(WideFromSystem, DecodesValidText) {
    const struct {
        std::string bytes;
        std::wstring text;
    } cases[] = {
        {"", L""},
        {"plain /\\%s\n", L"plain /\\%s\n"},
        {"\xC2\x80", L"\x80"},  // the smallest of two bytes
        {"\xDF\xBF", L"\u07FF"},
        {"\xE0\xA0\x80", L"\u0800"},  // the smallest of three
        {"\xE2\x82\xAC", L"\u20AC"},
        {"\xEF\xBF\xBF", L"\xFFFF"},
        {"\xF0\x90\x80\x80", {wchar_t(0xD800), wchar_t(0xDC00)}},  // U+10000, a pair
        {"\xF4\x8F\xBF\xBF", {wchar_t(0xDBFF), wchar_t(0xDFFF)}},  // U+10FFFF, the last one
    };
    for (const auto &c : cases) {
        EXPECT_EQ(test_wide_from_system(c.bytes), c.text) << c.bytes;
        EXPECT_EQ(test_system_from_wide(c.text), c.bytes) << c.bytes;
    }
}

TEST(WideFromSystem, BytesThatAreNotTextBecomeTheReplacementCharacter) {
    const wchar_t bad = 0xFFFD;
    const struct {
        std::string bytes;
        std::wstring text;
    } cases[] = {
        {"\x80", {bad}},
        {"a\xFF z", {L'a', bad, L' ', L'z'}},
        {"\xC3", {bad}},                             // cut by the end
        {"\xC3z", {bad, L'z'}},                      // cut by another character
        {"\xC0\xAF", {bad, bad}},                    // '/' made too long
        {"\xF4\x90\x80\x80", {bad, bad, bad, bad}},  // beyond the last code point
    };
    for (const auto &c : cases) {
        EXPECT_EQ(test_wide_from_system(c.bytes), c.text) << testing::PrintToString(c.bytes);
    }
}

// Any units, halves of pairs among them, as file names may hold.
TEST(SystemFromWide, EveryTextSurvivesTheRoundTrip) {
    TestRandom random = test_random_start(7);
    for (i32 round = 0; round < 2000; ++round) {
        std::wstring text;
        for (i32 i = 0; i < 12; ++i) {
            const i32 low = test_random_bool(&random, 0.5) ? 0xD7F0 : 1;
            const i32 high = low == 1 ? 0xFFFF : 0xE010;
            text.push_back(static_cast<wchar_t>(test_random_i32(&random, low, high)));
        }
        ASSERT_EQ(test_wide_from_system(test_system_from_wide(text)), text);
    }
}

// 0xFFE9 is 1111 111111 101001: EF BF A9.
TEST(SystemFromWide, WidenedBytesBecomeThreeBytes) {
    EXPECT_EQ(test_system_from_wide(std::wstring(1, wchar_t(0xFFE9))), "\xEF\xBF\xA9");
}
