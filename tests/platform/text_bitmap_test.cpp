#include "platform/text_bitmap.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <string>
#include <thread>

static constexpr i32 HEIGHT = 48;

static PlatformTextBitmap drawn(const wchar_t *text, i32 height = HEIGHT) {
    const Owned<PlatformTextFace> face(platform_text_face_create(height, 700));
    return platform_text_draw(face.get(), text);
}

static i32 width_of(const wchar_t *text, i32 height = HEIGHT) {
    const Owned<PlatformTextFace> face(platform_text_face_create(height, 700));
    return platform_text_width(face.get(), text);
}

// The ink, as whole pixels.
static f64 ink_of(const PlatformTextBitmap &bitmap) {
    i64 sum = 0;
    for (i64 i = 0; i < i64{bitmap.width} * bitmap.height; ++i) {
        sum += bitmap.coverage[static_cast<size_t>(i)];
    }
    return static_cast<f64>(sum) / 255.0;
}

TEST(PlatformTextDraw, ACapitalStandsOnItsBaseline) {
    const PlatformTextBitmap bitmap = drawn(L"H");
    ASSERT_GT(bitmap.width, 0);
    EXPECT_NEAR(bitmap.bottom, 0, 1);
    // A capital takes between half and four fifths of the cell.
    EXPECT_GE(bitmap.height * 10, HEIGHT * 5);
    EXPECT_LE(bitmap.height * 10, HEIGHT * 8);
    EXPECT_GE(bitmap.left, 0);
    EXPECT_LE(bitmap.left + bitmap.width, width_of(L"H") + 1);
    // Its lower left corner belongs to its left leg, the middle of its lower edge to nothing.
    EXPECT_GT(bitmap.coverage[2], 200);
    EXPECT_EQ(bitmap.coverage[static_cast<size_t>(bitmap.width) / 2], 0);
}

TEST(PlatformTextDraw, RowsLieFromTheBottomUp) {
    // All of the ink of an L's foot lies below; a "g" reaches below the baseline.
    const PlatformTextBitmap bitmap = drawn(L"L");
    i64 lowest = 0;
    i64 highest = 0;
    for (i32 x = 0; x < bitmap.width; ++x) {
        lowest += bitmap.coverage[static_cast<size_t>(i64{1} * bitmap.width + x)];
        highest += bitmap.coverage[static_cast<size_t>(i64{bitmap.height - 2} * bitmap.width + x)];
    }
    EXPECT_GT(lowest, 2 * highest);
    EXPECT_LT(drawn(L"g").bottom, -HEIGHT / 12);
}

TEST(PlatformTextDraw, EdgesAreSmooth) {
    const PlatformTextBitmap bitmap = drawn(L"O");
    i32 between = 0;
    for (i64 i = 0; i < i64{bitmap.width} * bitmap.height; ++i) {
        const u8 coverage = bitmap.coverage[static_cast<size_t>(i)];
        between += coverage > 30 && coverage < 225 ? 1 : 0;
    }
    EXPECT_GT(between, 20);
}

TEST(PlatformTextDraw, LettersBeyondAsciiHaveTheirMarks) {
    // An umlaut's dots lie above the letter; the stroke through an L adds ink.
    EXPECT_GT(drawn(L"\u00D6").height, drawn(L"O").height + HEIGHT / 12);
    EXPECT_GT(ink_of(drawn(L"\u0141")), ink_of(drawn(L"L")) * 1.05);
    EXPECT_GT(ink_of(drawn(L"\u03A9\u0434")), 50.0);
}

TEST(PlatformTextDraw, ATextIsItsLettersSideBySide) {
    const i32 single = width_of(L"n");
    EXPECT_NEAR(width_of(L"nnnnnnnnnn"), 10 * single, 5);
    EXPECT_NEAR(ink_of(drawn(L"nnnnnnnnnn")), 10.0 * ink_of(drawn(L"n")),
                0.05 * ink_of(drawn(L"nnnnnnnnnn")));
    EXPECT_GT(width_of(L"n n"), 2 * single);
    EXPECT_GT(width_of(L"n", 2 * HEIGHT), single * 3 / 2);
}

TEST(PlatformTextDraw, NothingHasNoInk) {
    for (const wchar_t *text : {L"", L"  ", L"\n\t\x7F"}) {
        const PlatformTextBitmap bitmap = drawn(text);
        EXPECT_EQ(bitmap.width, 0);
        EXPECT_EQ(bitmap.height, 0);
    }
    EXPECT_EQ(width_of(L""), 0);
    EXPECT_EQ(width_of(L"\n"), 0);
    EXPECT_EQ(width_of(L"A\nB"), width_of(L"AB"));
}

TEST(PlatformTextDraw, LettersThatNoFaceHasDoNoHarm) {
    // One of a private area, the last one of all, half a pair.
    for (const wchar_t *text : {L"\uE000 x", L"\U0010FFFF x", L"\U0001F600 x"}) {
        EXPECT_GT(ink_of(drawn(text)), 10.0);
    }
    const wchar_t half[] = {static_cast<wchar_t>(0xD800), L'x', 0};
    EXPECT_GT(ink_of(drawn(half)), 10.0);
}

TEST(PlatformTextDraw, AFaceServesOneThreadAfterAnother) {
    const Owned<PlatformTextFace> face(platform_text_face_create(HEIGHT, 700));
    const i32 width = platform_text_width(face.get(), L"text");
    i32 other = 0;
    f64 ink = 0.0;
    std::thread([&] {
        other = platform_text_width(face.get(), L"text");
        ink = ink_of(platform_text_draw(face.get(), L"text"));
    }).join();
    EXPECT_EQ(other, width);
    EXPECT_EQ(ink_of(platform_text_draw(face.get(), L"text")), ink);
}

TEST(PlatformTextDraw, KeepsNothing) {
    const i64 before = memory_live_blocks();
    drawn(L"some text");
    EXPECT_EQ(memory_live_blocks(), before);
    platform_text_face_free(nullptr);
}
