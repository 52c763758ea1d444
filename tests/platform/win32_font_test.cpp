// GDI's fonts as display lists: that they draw, advance and leave nothing behind. What the letters look like
// is the system's matter.
#include <GL/glew.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <vector>

#include "platform/platform.h"

static constexpr i32 CANVAS = 64;

class PlatformFontLists : public testing::Test {
protected:
    void SetUp() override {
        const wchar_t *reason = nullptr;
        gl.reset(platform_gl_create_offscreen(&reason));
        ASSERT_NE(gl, nullptr);
        GLuint names[2] = {};
        glGenFramebuffers(1, &names[0]);
        glGenRenderbuffers(1, &names[1]);
        glBindRenderbuffer(GL_RENDERBUFFER, names[1]);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, CANVAS, CANVAS);
        glBindFramebuffer(GL_FRAMEBUFFER, names[0]);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, names[1]);
        ASSERT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE));
        glViewport(0, 0, CANVAS, CANVAS);
        lists = glGenLists(256);
    }

    // Draws one character in black on white at (10, 20); returns the number of black pixels.
    i32 ink(u8 character) {
        glClearColor(1, 1, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        glColor4f(0, 0, 0, 1);
        glWindowPos2f(10, 20);
        glListBase(lists);
        glCallLists(1, GL_UNSIGNED_BYTE, &character);
        GLfloat position[4] = {};
        glGetFloatv(GL_CURRENT_RASTER_POSITION, position);
        advance = position[0] - 10;
        std::vector<u8> pixels(CANVAS * CANVAS * 4);
        glReadPixels(0, 0, CANVAS, CANVAS, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        i32 black = 0;
        for (size_t i = 0; i < pixels.size(); i += 4) {
            black += pixels[i] < 128 ? 1 : 0;
        }
        return black;
    }

    Owned<PlatformGl> gl;
    u32 lists = 0;
    f32 advance = 0;
};

TEST_F(PlatformFontLists, CharactersHaveInkAndAdvance) {
    PlatformFontMetrics metrics = {};
    ASSERT_TRUE(platform_font_lists(lists, 30, 700, &metrics));
    EXPECT_NEAR(metrics.height, 30, 1);
    EXPECT_GT(metrics.avg_char_width, 8);
    EXPECT_LT(metrics.avg_char_width, 24);
    EXPECT_GT(ink('A'), 40);
    const f32 wide = advance;
    EXPECT_GT(ink('i'), 10);
    EXPECT_LT(advance, wide);
    EXPECT_EQ(ink(' '), 0);
    EXPECT_GT(advance, 3.0F);
    EXPECT_GT(ink(0xB5), 20) << "the micro sign";
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(PlatformFontLists, BoldHasMoreInk) {
    PlatformFontMetrics metrics = {};
    ASSERT_TRUE(platform_font_lists(lists, 24, 400, &metrics));
    const i32 regular = ink('H');
    ASSERT_TRUE(platform_font_lists(lists, 24, 900, &metrics));
    EXPECT_GT(ink('H'), regular);
}

TEST_F(PlatformFontLists, LeavesTheFontOfTheDeviceContextAndNoObjects) {
    PlatformFontMetrics metrics = {};
    platform_font_lists(lists, 20, 400, &metrics);
    HGDIOBJ font = GetCurrentObject(wglGetCurrentDC(), OBJ_FONT);
    const DWORD objects = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    for (i32 i = 0; i < 50; ++i) {
        ASSERT_TRUE(platform_font_lists(lists, 20 + i % 3, 700, &metrics));
    }
    EXPECT_EQ(GetCurrentObject(wglGetCurrentDC(), OBJ_FONT), font);
    EXPECT_EQ(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), objects);
}

TEST_F(PlatformFontLists, LeavesTheLastListAlone) {
    PlatformFontMetrics metrics = {};
    glNewList(lists + 255, GL_COMPILE);
    const u8 nothing = 0;
    glBitmap(0, 0, 0, 0, 7, 0, &nothing);
    glEndList();
    ASSERT_TRUE(platform_font_lists(lists, 20, 400, &metrics));
    ink(255);
    EXPECT_EQ(advance, 7.0F);
}

TEST(PlatformFontListsAlone, WithoutAContextThereIsNoFont) {
    PlatformFontMetrics metrics = {};
    EXPECT_FALSE(platform_font_lists(1, 40, 400, &metrics));
    EXPECT_EQ(metrics.height, 40);
    EXPECT_EQ(metrics.avg_char_width, 16) << "estimated: two fifths";
}
