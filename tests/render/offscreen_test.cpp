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
    EXPECT_EQ(static_cast<i32>(target->fbo), gl_integer(GL_FRAMEBUFFER_BINDING));
    EXPECT_EQ(static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE), glCheckFramebufferStatus(GL_FRAMEBUFFER));
    EXPECT_EQ(renderbuffer_parameter(target->color_rb, GL_RENDERBUFFER_WIDTH), 30);
    EXPECT_EQ(renderbuffer_parameter(target->color_rb, GL_RENDERBUFFER_HEIGHT), 20);
    EXPECT_EQ(renderbuffer_parameter(target->color_rb, GL_RENDERBUFFER_INTERNAL_FORMAT), GL_RGBA8);
    EXPECT_EQ(renderbuffer_parameter(target->depth_rb, GL_RENDERBUFFER_WIDTH), 30);
    EXPECT_EQ(renderbuffer_parameter(target->depth_rb, GL_RENDERBUFFER_HEIGHT), 20);
    EXPECT_EQ(renderbuffer_parameter(target->depth_rb, GL_RENDERBUFFER_INTERNAL_FORMAT),
              GL_DEPTH_COMPONENT24);
    offscreen_free(target);
    EXPECT_EQ(static_cast<GLenum>(GL_NO_ERROR), glGetError());
}

TEST_F(OffscreenTest, RecreatingFreesTheOldObjects) {
    OffscreenTarget *target = nullptr;
    const i64 before = memory_live_blocks();
    offscreen_recreate(&target, 30, 20);
    const i64 with_one = memory_live_blocks();
    // Names may be given out again, so the objects are counted by what is alive afterwards.
    const u32 highest = target->fbo + 1;
    offscreen_recreate(&target, 40, 50);
    EXPECT_EQ(with_one, memory_live_blocks());
    EXPECT_LE(target->fbo, highest);
    EXPECT_EQ(renderbuffer_parameter(target->color_rb, GL_RENDERBUFFER_WIDTH), 40);
    const OffscreenTarget names = *target;
    offscreen_free(target);
    offscreen_free(nullptr);
    EXPECT_EQ(before, memory_live_blocks());
    EXPECT_FALSE(glIsFramebuffer(names.fbo));
    EXPECT_FALSE(glIsRenderbuffer(names.color_rb));
    EXPECT_FALSE(glIsRenderbuffer(names.depth_rb));
    EXPECT_EQ(gl_integer(GL_FRAMEBUFFER_BINDING), 0);
}

TEST_F(OffscreenTest, ReadsTheBottomRowFirstAsBlueGreenRedAlpha) {
    OffscreenTarget *target = nullptr;
    offscreen_recreate(&target, 3, 2);
    glClearColor(0.0F, 0.0F, 1.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, 3, 1);  // the bottom row
    glClearColor(1.0F, 0.0F, 0.0F, 0.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
    PixelImage *image = image_create(3, 2, L"test");
    offscreen_read(image);
    const u8 bottom[4] = {0, 0, 255, 0};
    const u8 top[4] = {255, 0, 0, 255};
    for (i32 x = 0; x < 3; ++x) {
        for (i32 i = 0; i < 4; ++i) {
            EXPECT_EQ(bottom[i], image->pixels[x * 4 + i]) << "bottom row, byte " << i;
            EXPECT_EQ(top[i], image->pixels[12 + x * 4 + i]) << "top row, byte " << i;
        }
    }
    EXPECT_EQ(gl_integer(GL_FRAMEBUFFER_BINDING), 0) << "the default framebuffer is bound afterwards";
    image_free(image);
    offscreen_free(target);
}

TEST_F(OffscreenTest, APictureThatIsTooLargeIsToldAndCannotBeRead) {
    const ConsoleCapture capture;
    OffscreenTarget *target = nullptr;
    EXPECT_FALSE(offscreen_recreate(&target, 1 << 24, 2));
    EXPECT_EQ(capture.narrow(), "");
    const std::string told = capture.diagnostics();
    EXPECT_NE(std::string::npos, told.find("16777216 x 2")) << told;
    EXPECT_EQ(told.size() - 1, told.find('\n')) << "one line: " << told;
    PixelImage *image = image_create(5, 2, L"test");
    EXPECT_FALSE(offscreen_read(image));
    EXPECT_NE(std::string::npos, capture.diagnostics().find("5 x 2")) << capture.diagnostics();
    EXPECT_EQ(gl_integer(GL_FRAMEBUFFER_BINDING), 0);

    // The next one is judged by itself.
    EXPECT_TRUE(offscreen_recreate(&target, 5, 2));
    EXPECT_TRUE(offscreen_read(image));
    image_free(image);
    offscreen_free(target);
}

TEST_F(OffscreenTest, AMistakeOfEarlierCallsSpoilsNoPicture) {
    OffscreenTarget *target = nullptr;
    ASSERT_TRUE(offscreen_recreate(&target, 5, 2));
    glEnable(0xFFFF);  // is no capability
    PixelImage *image = image_create(5, 2, L"test");
    EXPECT_TRUE(offscreen_read(image));
    image_free(image);
    offscreen_free(target);
}

// The pointers through which GLEW calls are open to a test: a stand-in fails as a driver without memory does.
static GLenum GLAPIENTRY incomplete_framebuffer(GLenum) {
    return GL_FRAMEBUFFER_UNSUPPORTED;
}

TEST_F(OffscreenTest, AFramebufferThatIsLostBeforeTheReadingIsNoPicture) {
    const ConsoleCapture capture;
    OffscreenTarget *target = nullptr;
    ASSERT_TRUE(offscreen_recreate(&target, 5, 2));
    PixelImage *image = image_create(5, 2, L"test");
    std::fill(image->pixels, image->pixels + 40, u8{7});
    const auto check = glCheckFramebufferStatus;
    glCheckFramebufferStatus = incomplete_framebuffer;
    EXPECT_FALSE(offscreen_read(image));
    EXPECT_FALSE(offscreen_recreate(&target, 5, 2));
    glCheckFramebufferStatus = check;
    EXPECT_EQ(image->pixels[0], 7);
    EXPECT_NE(capture.diagnostics(), "");
    image_free(image);
    offscreen_free(target);
}

TEST_F(OffscreenTest, AReadingThatFailsIsNoPicture) {
    const ConsoleCapture capture;
    OffscreenTarget *target = nullptr;
    ASSERT_TRUE(offscreen_recreate(&target, 5, 2));
    PixelImage *image = image_create(5, 2, L"test");
    image->width = -5;  // which glReadPixels refuses
    EXPECT_FALSE(offscreen_read(image));
    EXPECT_NE(std::string::npos, capture.diagnostics().find("error 0x0501")) << capture.diagnostics();
    image_free(image);
    offscreen_free(target);
    EXPECT_EQ(static_cast<GLenum>(GL_NO_ERROR), glGetError());
}

TEST_F(OffscreenTest, WithoutAContextOnlyTheRecordIsFreed) {
    OffscreenTarget *target = nullptr;
    const i64 before = memory_live_blocks();
    ASSERT_TRUE(offscreen_recreate(&target, 5, 2));
    const u32 name = target->fbo;
    platform_gl_make_current(nullptr);
    offscreen_free(target);
    EXPECT_EQ(before, memory_live_blocks());
    platform_gl_make_current(gl);
    EXPECT_TRUE(glIsFramebuffer(name)) << "it goes with the context";
}
