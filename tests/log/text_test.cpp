#include "log/text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cwchar>
#include <string>

#include "platform/memory.h"
#include "tests/support/test_support.h"

static std::wstring formatted(const Owned<WString> &string) {
    EXPECT_EQ(string->count, std::wcslen(string->text));
    return string->text;
}

TEST(WstringFormat, FormatsAndCounts) {
    const Owned<WString> string(wstring_format(L"%ls %d%% %.3f %hs|%c", L"step", -12, 0.5, "narrow", L'x'));
    EXPECT_EQ(formatted(string), L"step -12% 0.500 narrow|x");
    EXPECT_EQ(string->count, 24U);
}

TEST(WstringFormat, EmptyTextHasARecordAndATerminator) {
    const Owned<WString> string(wstring_format(L"%ls", L""));
    EXPECT_EQ(formatted(string), L"");
    EXPECT_EQ(string->count, 0U);
}

TEST(WstringFormat, GrowsForLongTexts) {
    // Around and far beyond any first guess of the room.
    for (const size_t length :
         {254U, 255U, 256U, 257U, 511U, 512U, 513U, 1023U, 1024U, 1025U, 5000U, 100000U}) {
        std::wstring text(length, L'a');
        text.back() = L'z';
        const Owned<WString> string(wstring_format(L"%ls", text.c_str()));
        EXPECT_EQ(formatted(string), text) << "length " << length;
        EXPECT_EQ(string->count, length);
    }
}

TEST(WstringFormat, KeepsEveryArgumentWhenItTriesAgain) {
    const std::wstring text(3000, L'-');
    const Owned<WString> string(wstring_format(L"%d %ls %d %.1f", 1, text.c_str(), 2, 3.0));
    EXPECT_EQ(formatted(string), L"1 " + text + L" 2 3.0");
}

TEST(WstringFormat, TakesTextOutsideAscii) {
    const wchar_t *texts[] = {L"\u00E9t\u00E9", L"\u20AC \u65E5\u672C", L"\xFFE9\xFF80", L"\xDC80 lone"};
    for (const wchar_t *text : texts) {
        const Owned<WString> string(wstring_format(L"<%ls>", text));
        EXPECT_EQ(formatted(string), L"<" + std::wstring(text) + L">");
    }
}

TEST(WstringFormat, WhatCannotBeFormattedIsEmptyWithoutMuchAdo) {
    const Owned<WString> string(wstring_format(L"%hs", "\xFF\xFE"));  // bytes that are no text
    ASSERT_NE(string, nullptr);
    ASSERT_NE(string->text, nullptr);
    EXPECT_LE(string->count, 2U);
}

TEST(WstringFormat, UsesOneBlockForTheRecordAndOneForTheText) {
    const i64 before = memory_live_blocks();
    Owned<WString> short_text(wstring_format(L"%d", 1));
    EXPECT_EQ(memory_live_blocks(), before + 2);
    Owned<WString> long_text(wstring_format(L"%ls", std::wstring(9000, L'x').c_str()));
    EXPECT_EQ(memory_live_blocks(), before + 4);
    short_text.reset();
    long_text.reset();
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(StringFormat, FormatsAndCounts) {
    const Owned<NString> string(string_format("%s %d%% %5.2f", "caf\xE9", 7, 1.25));
    EXPECT_STREQ(string->text, "caf\xE9 7%  1.25");
    EXPECT_EQ(string->count, 13U);
    const std::string text(70000, 'n');
    const Owned<NString> longer(string_format("%s", text.c_str()));
    EXPECT_EQ(longer->text, text);
    EXPECT_EQ(longer->count, 70000U);
}

TEST(StringCopy, TakesSignsLiterally) {
    const Owned<WString> wide(wstring_copy(L"100%ls %n"));
    EXPECT_EQ(formatted(wide), L"100%ls %n");
    const Owned<NString> narrow(string_copy("100%s %n"));
    EXPECT_STREQ(narrow->text, "100%s %n");
    EXPECT_EQ(narrow->count, 8U);
}

TEST(StringCopy, NullIsNamed) {
    const Owned<WString> wide(wstring_copy(nullptr));
    EXPECT_EQ(formatted(wide), L"(null)");
    const Owned<NString> narrow(string_copy(nullptr));
    EXPECT_STREQ(narrow->text, "(null)");
}

// Formatting short and long texts takes one to a few allocations; each of them is made to fail.
TEST(WstringFormat, WithoutMemoryForTheTextItIsAbsent) {
    for (const size_t length : {5U, 600U, 5000U}) {
        const std::wstring text(length, L'x');
        const i64 before = memory_live_blocks();
        i64 trip = 0;
        for (bool complete = false; !complete; ++trip) {
            memory_trip_after(trip);
            Owned<WString> string(wstring_format(L"%ls", text.c_str()));
            memory_trip_after(-1);
            if (trip == 0) {
                EXPECT_EQ(string, nullptr) << "no record";
                continue;
            }
            ASSERT_NE(string, nullptr);
            complete = string->text != nullptr;
            EXPECT_EQ(string->count, complete ? length : 0U);
            EXPECT_STREQ(wstring_text(string.get()), complete ? text.c_str() : L"");
            string.reset();
            EXPECT_EQ(memory_live_blocks(), before) << "trip " << trip;
        }
        EXPECT_GE(trip, 3) << "record, text, and then none fails";
    }
}

TEST(StringFormat, WithoutMemoryForTheTextItIsAbsent) {
    const i64 before = memory_live_blocks();
    memory_trip_after(0);
    EXPECT_EQ(string_format("%d", 1), nullptr);
    memory_trip_after(1);
    Owned<NString> string(string_format("%d", 1));
    memory_trip_after(-1);
    ASSERT_NE(string, nullptr);
    EXPECT_EQ(string->text, nullptr);
    EXPECT_EQ(string->count, 0U);
    EXPECT_STREQ(nstring_text(string.get()), "");
    string.reset();
    EXPECT_EQ(memory_live_blocks(), before);
}

// Ends with 0 when nothing fails with so many allocations allowed.
static void make_strings(i64 allowed) {
    const std::wstring wide(5000, L'x');
    const std::string narrow(5000, 'x');
    memory_trip_after(allowed);
    WString *strings[] = {wstring_make(L"%d", 1), wstring_make(L"%ls", wide.c_str()), wstring_copy(L"a")};
    NString *narrow_strings[] = {string_make("%s", narrow.c_str()), string_copy("a")};
    bool whole = true;
    for (const WString *string : strings) {
        whole = whole && string != nullptr && string->text != nullptr;
    }
    for (const NString *string : narrow_strings) {
        whole = whole && string != nullptr && string->text != nullptr;
    }
    std::_Exit(whole ? 0 : 1);
}

TEST(StringMakeDeathTest, WithoutMemoryTheProgramEnds) {
    TEST_NEEDS_FORK();
    // A record and a text each, and room that grows for the long wide one.
    i64 trip = 0;
    for (bool done = false; !done && trip < 100; ++trip) {
        auto ends_well = [&done](int status) {
            done = testing::ExitedWithCode(0)(status);
            return done || testing::ExitedWithCode(TEST_OUT_OF_MEMORY)(status);
        };
        EXPECT_EXIT(make_strings(trip), ends_well, "^(Memory allocation error\n)?$") << "allocation " << trip;
    }
    EXPECT_GE(trip, 11);
}

TEST(StringText, AbsentStringsAreEmpty) {
    EXPECT_STREQ(wstring_text(nullptr), L"");
    EXPECT_STREQ(nstring_text(nullptr), "");
    wstring_free(nullptr);
    nstring_free(nullptr);
}

TEST(TextWiden, ExtendsTheSignInto16Bits) {
    char bytes[256];
    for (i32 i = 0; i < 255; ++i) {
        bytes[i] = static_cast<char>(i + 1);
    }
    bytes[255] = 0;
    const WideText wide = text_widen(bytes);
    for (u32 i = 0; i < 255; ++i) {
        const u32 byte = i + 1;
        const u32 expected = byte < 0x80 ? byte : 0xFF00 + byte;
        EXPECT_EQ(static_cast<u32>(wide[i]), expected) << "byte " << byte;
    }
    EXPECT_EQ(wide[255], 0);
}

TEST(TextWiden, EmptyTextStaysEmpty) {
    const WideText wide = text_widen("");
    EXPECT_EQ(wide[0], 0);
}
