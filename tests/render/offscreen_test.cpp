#include "render/offscreen.h"

#include "gl_test.h"
#include "platform/memory.h"
#include "tests/support/test_support.h"

class OffscreenTest : public GlTest {};

static i32 gl_integer(GLenum name) {
    GLint value = -1;
    glGetIntegerv(name, &value);
    return value;
}

static i32 renderbuffer_parameter(u32 name, GLenum parameter) {
    GLint value = -1;
    glBindRenderbuffer(GL_RENDERBUFFER, name);
    glGetRenderbufferParameteriv(GL_RENDERBUFFER, parameter, &value);
    return value;
}

TEST_F(OffscreenTest, MakesAFramebufferOfTheSizeAndLeavesItBound) {
    OffscreenTarget *target = nullptr;
    offscreen_recreate(&target, 30, 20);
    ASSERT_NE(target, nullptr);
    EXPECT_EQ(gl_integer(GL_FRAMEBUFFER_BINDING), static_cast<i32>(target->fbo));
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE));
    EXPECT_EQ(renderbuffer_parameter(target->color_rb, GL_RENDERBUFFER_WIDTH), 30);
    EXPECT_EQ(renderbuffer_parameter(target->color_rb, GL_RENDERBUFFER_HEIGHT), 20);
    EXPECT_EQ(renderbuffer_parameter(target->color_rb, GL_RENDERBUFFER_INTERNAL_FORMAT), GL_RGBA8);
    EXPECT_EQ(renderbuffer_parameter(target->depth_rb, GL_RENDERBUFFER_WIDTH), 30);
    EXPECT_EQ(renderbuffer_parameter(target->depth_rb, GL_RENDERBUFFER_HEIGHT), 20);
    EXPECT_EQ(renderbuffer_parameter(target->depth_rb, GL_RENDERBUFFER_INTERNAL_FORMAT),
              GL_DEPTH_COMPONENT24);
    offscreen_free(target);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(OffscreenTest, RecreatingFreesTheOldObjects) {
    OffscreenTarget *target = nullptr;
    const i64 before = memory_live_blocks();
    offscreen_recreate(&target, 30, 20);
    const i64 with_one = memory_live_blocks();
    // Names may be given out again, so the objects are counted by what is alive afterwards.
    const u32 highest = target->fbo + 1;
    offscreen_recreate(&target, 40, 50);
    EXPECT_EQ(memory_live_blocks(), with_one);
    EXPECT_LE(target->fbo, highest);
    EXPECT_EQ(renderbuffer_parameter(target->color_rb, GL_RENDERBUFFER_WIDTH), 40);
    const OffscreenTarget names = *target;
    offscreen_free(target);
    offscreen_free(nullptr);
    EXPECT_EQ(memory_live_blocks(), before);
    EXPECT_FALSE(glIsFramebuffer(names.fbo));
    EXPECT_FALSE(glIsRenderbuffer(names.color_rb));
    EXPECT_FALSE(glIsRenderbuffer(names.depth_rb));
    EXPECT_EQ(gl_integer(GL_FRAMEBUFFER_BINDING), 0);
}

TEST_F(OffscreenTest, ReadsTheBottomRowFirstAsBlueGreenRedAlpha) {
    OffscreenTarget *target = nullptr;
    offscreen_recreate(&target, 3, 2);
    const Owned<OffscreenTarget> owner(target);
    glClearColor(0.0F, 0.0F, 1.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, 3, 1);  // the bottom row
    glClearColor(1.0F, 0.0F, 0.0F, 0.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
    const Owned<PixelImage> image(image_create(3, 2, L"test"));
    offscreen_read(image.get());
    const u8 bottom[4] = {0, 0, 255, 0};
    const u8 top[4] = {255, 0, 0, 255};
    for (i32 x = 0; x < 3; ++x) {
        for (i32 i = 0; i < 4; ++i) {
            EXPECT_EQ(image->pixels[x * 4 + i], bottom[i]) << "bottom row, byte " << i;
            EXPECT_EQ(image->pixels[12 + x * 4 + i], top[i]) << "top row, byte " << i;
        }
    }
    EXPECT_EQ(gl_integer(GL_FRAMEBUFFER_BINDING), 0) << "the default framebuffer is bound afterwards";
}

TEST_F(OffscreenTest, APictureThatIsTooLargeIsToldAndCannotBeRead) {
    const ConsoleCapture capture;
    OffscreenTarget *target = nullptr;
    EXPECT_FALSE(offscreen_recreate(&target, 1 << 24, 2));
    EXPECT_EQ(capture.narrow(), "");
    const std::string told = capture.diagnostics();
    EXPECT_NE(told.find("16777216 x 2"), std::string::npos) << told;
    EXPECT_EQ(told.size() - 1, told.find('\n')) << "one line: " << told;
    const Owned<PixelImage> image(image_create(5, 2, L"test"));
    EXPECT_FALSE(offscreen_read(image.get()));
    EXPECT_NE(capture.diagnostics().find("5 x 2"), std::string::npos) << capture.diagnostics();
    EXPECT_EQ(gl_integer(GL_FRAMEBUFFER_BINDING), 0);

    // The next one is judged by itself.
    EXPECT_TRUE(offscreen_recreate(&target, 5, 2));
    const Owned<OffscreenTarget> owner(target);
    EXPECT_TRUE(offscreen_read(image.get()));
}

TEST_F(OffscreenTest, AMistakeOfEarlierCallsSpoilsNoPicture) {
    OffscreenTarget *target = nullptr;
    ASSERT_TRUE(offscreen_recreate(&target, 5, 2));
    const Owned<OffscreenTarget> owner(target);
    glEnable(0xFFFF);  // is no capability
    const Owned<PixelImage> image(image_create(5, 2, L"test"));
    EXPECT_TRUE(offscreen_read(image.get()));
}

// The pointers through which GLEW calls are open to a test: a stand-in fails as a driver without memory does.
static GLenum GLAPIENTRY incomplete_framebuffer(GLenum) {
    return GL_FRAMEBUFFER_UNSUPPORTED;
}

TEST_F(OffscreenTest, AFramebufferThatIsLostBeforeTheReadingIsNoPicture) {
    const ConsoleCapture capture;
    OffscreenTarget *target = nullptr;
    ASSERT_TRUE(offscreen_recreate(&target, 5, 2));
    const Owned<PixelImage> image(image_create(5, 2, L"test"));
    std::fill(image->pixels, image->pixels + 40, u8{7});
    const auto check = glCheckFramebufferStatus;
    glCheckFramebufferStatus = incomplete_framebuffer;
    EXPECT_FALSE(offscreen_read(image.get()));
    EXPECT_FALSE(offscreen_recreate(&target, 5, 2));
    const Owned<OffscreenTarget> owner(target);
    glCheckFramebufferStatus = check;
    EXPECT_EQ(image->pixels[0], 7);
    EXPECT_NE(capture.diagnostics(), "");
}

TEST_F(OffscreenTest, AReadingThatFailsIsNoPicture) {
    const ConsoleCapture capture;
    OffscreenTarget *target = nullptr;
    ASSERT_TRUE(offscreen_recreate(&target, 5, 2));
    const Owned<OffscreenTarget> owner(target);
    const Owned<PixelImage> image(image_create(5, 2, L"test"));
    image->width = -5;  // which glReadPixels refuses
    EXPECT_FALSE(offscreen_read(image.get()));
    EXPECT_NE(capture.diagnostics().find("error 0x0501"), std::string::npos) << capture.diagnostics();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(OffscreenTest, WithoutAContextOnlyTheRecordIsFreed) {
    OffscreenTarget *target = nullptr;
    const i64 before = memory_live_blocks();
    ASSERT_TRUE(offscreen_recreate(&target, 5, 2));
    const u32 name = target->fbo;
    platform_gl_make_current(nullptr);
    offscreen_free(target);
    EXPECT_EQ(memory_live_blocks(), before);
    platform_gl_make_current(gl.get());
    EXPECT_TRUE(glIsFramebuffer(name)) << "it goes with the context";
}
