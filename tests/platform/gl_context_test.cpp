#include <GL/glew.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "platform/platform.h"
#include "tests/support/test_support.h"

static std::string reason_text(const wchar_t *reason) {
    return reason != nullptr ? test_utf8(reason) : "no reason told";
}

// Clears a small framebuffer of the current context and gives the pixel back, 0xRRGGBBAA.
static u32 cleared_pixel(f32 red, f32 green, f32 blue) {
    GLuint fbo = 0;
    GLuint color = 0;
    glGenFramebuffers(1, &fbo);
    glGenRenderbuffers(1, &color);
    glBindRenderbuffer(GL_RENDERBUFFER, color);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, 4, 4);
    glBindFramebuffer(GL_FRAMEBUFFER, fbo);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color);
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE));
    glClearColor(red, green, blue, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    u8 pixel[4] = {};
    glReadPixels(2, 2, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteRenderbuffers(1, &color);
    glDeleteFramebuffers(1, &fbo);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    return (u32{pixel[0]} << 24) | (u32{pixel[1]} << 16) | (u32{pixel[2]} << 8) | pixel[3];
}

TEST(PlatformGl, CreatesACurrentContextThatDraws) {
    EXPECT_FALSE(platform_gl_is_current());
    const wchar_t *reason = L"not cleared";
    Owned<PlatformGl> gl(platform_gl_create_offscreen(&reason));
    ASSERT_NE(gl, nullptr) << reason_text(reason);
    EXPECT_EQ(reason, nullptr);
    EXPECT_TRUE(platform_gl_is_current());
    EXPECT_EQ(cleared_pixel(1.0F, 0.0F, 0.2F), 0xFF0033FFU);
    platform_gl_swap(gl.get());  // nothing to show, and no harm
    gl.reset();
    EXPECT_FALSE(platform_gl_is_current());
}

TEST(PlatformGl, HasFixedFunctionCallsShadersAndDisplayLists) {
    const Owned<PlatformGl> gl(platform_gl_create_offscreen(nullptr));
    ASSERT_NE(gl, nullptr);
    EXPECT_NE(glWindowPos2f, nullptr);
    EXPECT_NE(glCreateShader, nullptr);
    EXPECT_NE(glGenVertexArrays, nullptr);
    EXPECT_NE(glGenFramebuffers, nullptr);
    const GLuint list = glGenLists(256);
    EXPECT_NE(list, 0U);
    glWindowPos2f(3.0F, 4.0F);
    GLboolean valid = GL_FALSE;
    glGetBooleanv(GL_CURRENT_RASTER_POSITION_VALID, &valid);
    EXPECT_EQ(valid, GL_TRUE);
    glDeleteLists(list, 256);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(PlatformGl, TheDefaultFramebufferIsComplete) {
    const Owned<PlatformGl> gl(platform_gl_create_offscreen(nullptr));
    ASSERT_NE(gl, nullptr);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE));
}

struct Handover {
    PlatformGl *gl;
    bool taken;
    bool released;
    u32 pixel;
};

static i32 draw_on_thread(void *argument) {
    auto *handover = static_cast<Handover *>(argument);
    const bool held_before = platform_gl_is_current();
    handover->taken = platform_gl_make_current(handover->gl) && platform_gl_is_current();
    if (handover->taken) {
        handover->pixel = cleared_pixel(0.0F, 1.0F, 0.0F);
    }
    handover->released = platform_gl_make_current(nullptr) && !platform_gl_is_current();
    return held_before ? 1 : 0;
}

TEST(PlatformGlMakeCurrent, HandsTheContextToAnotherThreadAndBack) {
    const Owned<PlatformGl> gl(platform_gl_create_offscreen(nullptr));
    ASSERT_NE(gl, nullptr);
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    EXPECT_TRUE(platform_gl_make_current(nullptr));
    EXPECT_FALSE(platform_gl_is_current());
    EXPECT_TRUE(platform_gl_make_current(nullptr)) << "releasing nothing is fine";

    Handover handover = {gl.get(), false, false, 0};
    PlatformThread *thread = platform_thread_start(draw_on_thread, &handover);
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(platform_thread_join(thread), 0) << "a new thread holds no context";
    EXPECT_TRUE(handover.taken);
    EXPECT_TRUE(handover.released);
    EXPECT_EQ(handover.pixel, 0x00FF00FFU);

    EXPECT_TRUE(platform_gl_make_current(gl.get()));
    EXPECT_EQ(glIsBuffer(buffer), GL_TRUE) << "objects outlive the handover";
    glDeleteBuffers(1, &buffer);
}

static i32 take_held_context(void *argument) {
    return platform_gl_make_current(static_cast<PlatformGl *>(argument)) ? 1 : 0;
}

TEST(PlatformGlMakeCurrent, FailsWhileAnotherThreadHoldsTheContext) {
    const Owned<PlatformGl> gl(platform_gl_create_offscreen(nullptr));
    ASSERT_NE(gl, nullptr);
    PlatformThread *thread = platform_thread_start(take_held_context, gl.get());
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(platform_thread_join(thread), 0);
    EXPECT_EQ(cleared_pixel(0.0F, 0.0F, 1.0F), 0x0000FFFFU) << "this thread still holds it";
}

TEST(PlatformGlFree, LeavesOtherContextsAlone) {
    const Owned<PlatformGl> first(platform_gl_create_offscreen(nullptr));
    Owned<PlatformGl> second(platform_gl_create_offscreen(nullptr));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    second.reset();
    EXPECT_FALSE(platform_gl_is_current()) << "the second one was current here";
    EXPECT_TRUE(platform_gl_make_current(first.get()));
    EXPECT_EQ(cleared_pixel(1.0F, 1.0F, 1.0F), 0xFFFFFFFFU);
    platform_gl_free(nullptr);
}

#ifndef _WIN32
// In a process of its own, before anything was loaded: no driver can be found.
static void create_without_driver() {
    setenv("__EGL_VENDOR_LIBRARY_DIRS", "/nowhere", 1);
    const wchar_t *reason = nullptr;
    PlatformGl *gl = platform_gl_create_offscreen(&reason);
    std::fprintf(stderr, "reason: %s\n", reason_text(reason).c_str());
    std::_Exit(gl == nullptr ? 7 : 8);
}

TEST(PlatformGlDeathTest, TellsWhyThereIsNoContext) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(create_without_driver(), testing::ExitedWithCode(7), "reason: no graphics driver");
}
#endif
