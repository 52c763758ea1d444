#include "render/picture_text.h"

#include <gtest/gtest.h>

#include <string>

#include "gl_test.h"
#include "tests/support/test_support.h"

class PictureText : public ::testing::Test {
protected:
    void TearDown() override { picture_text_free_faces(); }
};

// Counts the pixels of a bitmap by what they show.
struct EdgedCount {
    i32 black = 0, white = 0, clear = 0, between = 0;
};

static EdgedCount count(const EdgedText &text) {
    EdgedCount counted;
    for (i64 i = 0; i < i64{text.width} * text.height; ++i) {
        const u8 *pixel = text.pixels.get() + i * 4;
        if (pixel[3] == 0) {
            ++counted.clear;
        } else if (pixel[3] == 255 && pixel[0] == 0) {
            ++counted.black;
        } else if (pixel[3] == 255 && pixel[0] == 255) {
            ++counted.white;
        } else {
            ++counted.between;
        }
        EXPECT_TRUE(pixel[0] == pixel[1] && pixel[1] == pixel[2]);
    }
    return counted;
}

TEST_F(PictureText, ABarHasAWhiteEdgeOfTwoPixelsAllAround) {
    // A capital I in bold is one upright bar, without serifs. At 32 pixels its edge is (32 + 8) / 16 = 2
    // wide.
    const EdgedText text = picture_text_edged(L"I", 32);
    ASSERT_GT(text.width, 4);
    // Through its middle from left to right: nothing or little, white, black, white, nothing or little.
    std::string row;
    for (i32 x = 0; x < text.width; ++x) {
        const u8 *pixel = text.pixels.get() + (i64{text.height / 2} * text.width + x) * 4;
        row += pixel[3] < 128 ? '.' : pixel[0] < 128 ? '#' : 'o';
    }
    const size_t first = row.find('#');
    const size_t last = row.rfind('#');
    ASSERT_NE(first, std::string::npos) << row;
    EXPECT_GE(last - first, 2U) << row;
    for (size_t i = 1; i <= 2; ++i) {
        ASSERT_GE(first, i) << row;
        EXPECT_EQ(row[first - i], 'o') << row;
        EXPECT_EQ(row[last + i], 'o') << row;
    }
    EXPECT_LE(static_cast<i32>(last - first), text.width - 4) << row;
    const EdgedCount counted = count(text);
    EXPECT_GT(counted.black, 0);
    EXPECT_GT(counted.white, 0);
}

TEST_F(PictureText, TheEdgeGrowsWithTheText) {
    const EdgedText small = picture_text_edged(L"I", 24);
    const EdgedText large = picture_text_edged(L"I", 240);
    // 2 pixels, and (240 + 8) / 16 = 15 pixels, on both sides of the start.
    EXPECT_LE(small.bottom, -2);
    EXPECT_GE(small.bottom, -4);
    EXPECT_LE(large.bottom, -15);
    EXPECT_GE(large.bottom, -17);
    // Far inside the bar all is ink, although only its border is looked at for the edge.
    const u8 *middle = large.pixels.get() + (i64{large.height / 2} * large.width + large.width / 2) * 4;
    EXPECT_EQ(middle[0], 0);
    EXPECT_EQ(middle[3], 255);
}

TEST_F(PictureText, ATextThatFitsIsWhole) {
    const i32 width = picture_text_width(L"SILICON NITRIDE", 30);
    EXPECT_EQ(test_utf8(picture_text_fit(L"SILICON NITRIDE", 30, width).get()), "SILICON NITRIDE");
    EXPECT_EQ(test_utf8(picture_text_fit(L"", 30, 0).get()), "");
}

TEST_F(PictureText, ATextThatIsTooLongIsCut) {
    const std::wstring text = L"SILICON NITRIDE OF THE LAST STEP";
    for (const i32 room : {60, 120, 240}) {
        const WideText cut = picture_text_fit(text.c_str(), 30, room);
        const std::wstring got = cut.get();
        ASSERT_GE(got.size(), 3U);
        EXPECT_EQ(got.substr(got.size() - 3), L"...");
        const std::wstring kept = got.substr(0, got.size() - 3);
        EXPECT_EQ(text.substr(0, kept.size()), kept);
        EXPECT_LE(picture_text_width(got.c_str(), 30), room);
        const std::wstring more = text.substr(0, kept.size() + 1) + L"...";
        EXPECT_GT(picture_text_width(more.c_str(), 30), room) << "one more letter would fit";
    }
    EXPECT_EQ(test_utf8(picture_text_fit(text.c_str(), 30, 0).get()), "...");
}

class PictureTextDraw : public GlTest {};

TEST_F(PictureTextDraw, UpwardsIsTheSameTextTurned) {
    TestScene scene(20, 15, 5.0F);
    const f32 grey[4] = {0.6F, 0.6F, 0.6F, 1.0F};
    scene.add_flat_layer("SUBSTRATE", grey, 0.001F);
    scene.forced_height = 600;  // so that the section lies above the texts
    i32 level = 0;
    i32 upright = 0;
    scene.render(640, [] {
        picture_text_draw(10, 20, L"Lg", 40);
        picture_text_draw_upwards(300, 20, L"Lg", 40);
    });
    for (i32 m = -15; m < 45; ++m) {
        for (i32 n = -3; n < 60; ++n) {
            const Color before = scene.pixel(10 + n, 20 + m);
            // A quarter to the left: right becomes up, up becomes left; a pixel right of the start lies above
            // it.
            const Color turned = scene.pixel(300 - 1 - m, 20 + n);
            level += brightness(before) < 300 ? 1 : 0;
            upright += brightness(turned) < 300 ? 1 : 0;
            ASSERT_EQ(brightness(before), brightness(turned)) << n << ", " << m;
        }
    }
    EXPECT_GT(level, 100);
    EXPECT_EQ(level, upright);
}

TEST_F(PictureTextDraw, LeavesTheStateAsItWas) {
    glDepthFunc(GL_LESS);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 2);
    picture_text_draw(1, 1, L"text", 20);
    GLint number = 0;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &number);
    EXPECT_EQ(number, 2);
    EXPECT_EQ(glIsEnabled(GL_DEPTH_TEST), GL_TRUE);
    glGetIntegerv(GL_BLEND_SRC_ALPHA, &number);
    EXPECT_EQ(number, GL_SRC_ALPHA);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}
