#include <gtest/gtest.h>

#include <cwchar>
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
        {"\x7F", L"\x7F"},
        {"\xC2\x80", L"\x80"},  // the smallest of two bytes
        {"\xC3\xA9t\xC3\xA9", L"\u00E9t\u00E9"},
        {"\xDF\xBF", L"\u07FF"},      // the largest of two
        {"\xE0\xA0\x80", L"\u0800"},  // the smallest of three
        {"\xE2\x82\xAC", L"\u20AC"},
        {"\xED\x9F\xBF", L"\uD7FF"},
        {"\xEE\x80\x80", L"\uE000"},
        {"\xEF\xBF\xBF", L"\xFFFF"},
        {"\xF0\x90\x80\x80", L"\U00010000"},  // the smallest of four
        {"\xF4\x8F\xBF\xBF", L"\U0010FFFF"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(test_wide_from_system(c.bytes), c.text) << c.bytes;
        EXPECT_EQ(test_system_from_wide(c.text), c.bytes) << c.bytes;
    }
}

// Every byte that is not part of valid text stands alone as 0xDC00 + byte.
TEST(WideFromSystem, EscapesBytesThatAreNotText) {
    const struct {
        std::string bytes;
        std::wstring text;
    } cases[] = {
        {"\x80", {wchar_t(0xDC80)}},
        {"a\xFF z", {L'a', wchar_t(0xDCFF), L' ', L'z'}},
        {"\xC3", {wchar_t(0xDCC3)}},                       // cut by the end
        {"\xC3z", {wchar_t(0xDCC3), L'z'}},                // cut by another character
        {"\xE2\x82", {wchar_t(0xDCE2), wchar_t(0xDC82)}},  // cut after two of three
        {"\xC0\xAF", {wchar_t(0xDCC0), wchar_t(0xDCAF)}},  // '/' made too long
        {"\xC1\xBF", {wchar_t(0xDCC1), wchar_t(0xDCBF)}},
        {"\xE0\x80\xAF", {wchar_t(0xDCE0), wchar_t(0xDC80), wchar_t(0xDCAF)}},
        {"\xED\xA0\x80", {wchar_t(0xDCED), wchar_t(0xDCA0), wchar_t(0xDC80)}},  // the surrogate 0xD800
        {"\xED\xB2\x80", {wchar_t(0xDCED), wchar_t(0xDCB2), wchar_t(0xDC80)}},  // an escape written out
        {"\xF4\x90\x80\x80", {wchar_t(0xDCF4), wchar_t(0xDC90), wchar_t(0xDC80), wchar_t(0xDC80)}},
        {"\xF5", {wchar_t(0xDCF5)}},
        {"\xC3\xA9\xE9", {wchar_t(0xE9), wchar_t(0xDCE9)}},  // two encodings in one name
    };
    for (const auto &c : cases) {
        EXPECT_EQ(test_wide_from_system(c.bytes), c.text) << testing::PrintToString(c.bytes);
        EXPECT_EQ(test_system_from_wide(c.text), c.bytes) << testing::PrintToString(c.bytes);
    }
}

TEST(WideFromSystem, EveryByteAndPairOfBytesSurvivesTheRoundTrip) {
    for (i32 first = 1; first < 256; ++first) {
        const std::string one(1, static_cast<char>(first));
        EXPECT_EQ(test_system_from_wide(test_wide_from_system(one)), one) << "byte " << first;
        for (i32 second = 1; second < 256; ++second) {
            const std::string two = one + static_cast<char>(second);
            ASSERT_EQ(test_system_from_wide(test_wide_from_system(two)), two)
                << "bytes " << first << " " << second;
        }
    }
}

TEST(WideFromSystem, RandomBytesSurviveTheRoundTrip) {
    TestRandom random = test_random_start(20);
    for (i32 round = 0; round < 2000; ++round) {
        std::string bytes;
        for (i32 length = test_random_i32(&random, 0, 40); length > 0; --length) {
            // Mostly bytes of longer sequences, so that many nearly valid ones occur.
            const i32 low = test_random_bool(&random, 0.8) ? 0x80 : 1;
            bytes.push_back(static_cast<char>(test_random_i32(&random, low, 255)));
        }
        ASSERT_EQ(test_system_from_wide(test_wide_from_system(bytes)), bytes)
            << testing::PrintToString(bytes);
    }
}

TEST(SystemFromWide, UnitsThatNoTextHasBecomeTheReplacementCharacter) {
    const u32 units[] = {0xD800, 0xDBFF, 0xDC00, 0xDC7F, 0xDD00, 0xDFFF, 0x110000, 0x7FFFFFFF, 0xFFFFFFFF};
    for (const u32 unit : units) {
        const std::wstring text = {L'a', static_cast<wchar_t>(unit), L'z'};
        EXPECT_EQ(test_system_from_wide(text), "a\xEF\xBF\xBDz") << "unit " << unit;
    }
}

TEST(SystemFromWide, WidenedBytesBecomeThreeBytes) {
    // 0xFFE9 is 1111 111111 101001: EF BF A9.
    EXPECT_EQ(test_system_from_wide(std::wstring(1, wchar_t(0xFFE9))), "\xEF\xBF\xA9");
}
