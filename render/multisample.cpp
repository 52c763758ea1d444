#include "render/multisample.h"

#include <GL/glew.h>
#include <cassert>
#include "log/log.h"
#include "platform/memory.h"
#include "platform/platform.h"

static constexpr i64 BYTES_PER_SAMPLE = 8;  // colour and depth
static constexpr i64 BYTES_PER_PIXEL = 8;   // of one pass, and of what a driver keeps beside it

// Whether the samples of a picture can be had, so that fewer are taken instead of a run that ends.
static bool has_memory(i32 width, i32 height, i32 samples) {
    const size_t bytes = static_cast<size_t>(samples * BYTES_PER_SAMPLE + BYTES_PER_PIXEL);
    const Owned<u8[]> block(static_cast<u8 *>(memory_try_allocate(i64{width} * height, bytes)));
    return block != nullptr;
}

static u32 create_samples(u32 format, const MultisampleTarget *target) {
    u32 name = 0;
    glGenRenderbuffers(1, &name);
    glBindRenderbuffer(GL_RENDERBUFFER, name);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, target->samples > 1 ? target->samples : 0, format,
                                     target->width, target->height);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    return name;
}

static void delete_objects(MultisampleTarget *target) {
    glDeleteRenderbuffers(1, &target->color_rb);
    glDeleteRenderbuffers(1, &target->depth_rb);
    glDeleteTextures(1, &target->pass_texture);
    glDeleteFramebuffers(1, &target->fbo);
    glDeleteFramebuffers(1, &target->pass_fbo);
    target->fbo = target->color_rb = target->depth_rb = target->pass_fbo = target->pass_texture = 0;
}

static bool is_complete() {
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

// Makes the framebuffers for the target's number of samples; false, and nothing is left, when the graphics
// refuse one of them.
static bool create_objects(MultisampleTarget *target) {
    if (!has_memory(target->width, target->height, target->samples)) {
        return false;
    }
    glGenFramebuffers(1, &target->fbo);
    target->color_rb = create_samples(GL_RGBA8, target);
    target->depth_rb = create_samples(GL_DEPTH_COMPONENT24, target);
    glBindFramebuffer(GL_FRAMEBUFFER, target->fbo);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, target->color_rb);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, target->depth_rb);
    bool made = is_complete();
    glGenFramebuffers(1, &target->pass_fbo);
    glGenTextures(1, &target->pass_texture);
    glBindTexture(GL_TEXTURE_2D, target->pass_texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, target->width, target->height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glBindTexture(GL_TEXTURE_2D, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, target->pass_fbo);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, target->pass_texture, 0);
    made = made && is_complete() && glGetError() == GL_NO_ERROR;
    glBindFramebuffer(GL_FRAMEBUFFER, target->picture);
    if (!made) {
        delete_objects(target);
        while (glGetError() ==
               GL_OUT_OF_MEMORY) {  // of what was refused; what is drawn next is judged by itself
        }
    }
    return made;
}

static i32 most_samples() {
    GLint most = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &most);
    return most < 1 ? 1 : most < SAMPLES_A_PIXEL ? most : SAMPLES_A_PIXEL;
}

MultisampleTarget *multisample_create(i32 width, i32 height) {
    assert(width > 0 && height > 0 && platform_gl_is_current());
    MultisampleTarget *target = memory_new_zeroed<MultisampleTarget>();
    GLint bound = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    target->picture = static_cast<u32>(bound);
    target->width = width;
    target->height = height;
    const i32 offered = most_samples();
    target->samples = offered;
    bool made = create_objects(target);
    while (!made && target->samples > 1) {
        target->samples /= 2;
        made = create_objects(target);
    }
    const i32 passes = made ? SAMPLES_A_PIXEL / target->samples : 1;
    target->passes = passes < 1 ? 1 : passes < MOST_PASSES ? passes : MOST_PASSES;
    static bool is_told;  // pictures are drawn by one thread at a time
    if (target->samples < offered && !is_told) {
        is_told = true;
        diagnostic_write(
            L"the graphics have no memory for %d samples a pixel in pictures of %d x %d pixels: "
            L"fine pictures get %d at a time",
            offered, width, height, target->samples);
    }
    return target;
}

void multisample_free(MultisampleTarget *target) {
    if (target == nullptr) {
        return;
    }
    if (platform_gl_is_current()) {
        delete_objects(target);
    }
    memory_free(target);
}

// The samples of one pass lie evenly over the height and the width of a pixel; the passes divide the distance
// between two of them once more, each in another order across than upwards.
void multisample_begin(const MultisampleTarget *target, i32 pass, f32 *dx, f32 *dy) {
    assert(target != nullptr && pass >= 0 && pass < target->passes && dx != nullptr && dy != nullptr);
    const i32 order_across[MOST_PASSES] = {1, 3, 0, 2};
    const f32 step = 1.0F / static_cast<f32>(target->passes * target->samples);
    const f32 middle = static_cast<f32>(target->passes - 1) * 0.5F;
    const i32 across = target->passes == MOST_PASSES ? order_across[pass] : pass;
    *dx = (static_cast<f32>(across) - middle) * step;
    *dy = (static_cast<f32>(pass) - middle) * step;
    glBindFramebuffer(GL_FRAMEBUFFER, target->fbo != 0 ? target->fbo : target->picture);
}

// Lays the texture over the picture with the weight that makes it an equal part of the passes until now.
static void blend_pass(const MultisampleTarget *target, i32 pass) {
    glUseProgram(0);
    glPushAttrib(GL_COLOR_BUFFER_BIT | GL_ENABLE_BIT | GL_TEXTURE_BIT | GL_VIEWPORT_BIT);
    glViewport(0, 0, target->width, target->height);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, target->pass_texture);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glBlendColor(0.0F, 0.0F, 0.0F, 1.0F / static_cast<f32>(pass + 1));
    glBlendFunc(GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA);
    const f32 corners[4][2] = {{0.0F, 0.0F}, {1.0F, 0.0F}, {1.0F, 1.0F}, {0.0F, 1.0F}};
    glBegin(GL_QUADS);
    for (const f32(&corner)[2] : corners) {
        glTexCoord2f(corner[0], corner[1]);
        glVertex2f(corner[0] * 2.0F - 1.0F, corner[1] * 2.0F - 1.0F);
    }
    glEnd();
    glPopAttrib();
}

void multisample_end(const MultisampleTarget *target, i32 pass) {
    assert(target != nullptr && pass >= 0 && pass < target->passes);
    if (target->fbo == 0) {
        return;
    }
    glBindFramebuffer(GL_READ_FRAMEBUFFER, target->fbo);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, pass == 0 ? target->picture : target->pass_fbo);
    glBlitFramebuffer(0, 0, target->width, target->height, 0, 0, target->width, target->height,
                      GL_COLOR_BUFFER_BIT, GL_NEAREST);
    if (pass == 0) {
        glBlitFramebuffer(0, 0, target->width, target->height, 0, 0, target->width, target->height,
                          GL_DEPTH_BUFFER_BIT, GL_NEAREST);
    }
    glBindFramebuffer(GL_FRAMEBUFFER, target->picture);
    if (pass > 0) {
        blend_pass(target, pass);
    }
}
