#include "render/offscreen.h"

#include <GL/glew.h>
#include <cassert>
#include "log/log.h"
#include "platform/memory.h"
#include "platform/platform.h"

static constexpr i32 MOST_ERRORS = 16;          // looked at in one go; a lost context gives them without end
static constexpr GLenum CONTEXT_LOST = 0x0507;  // GL_CONTEXT_LOST, which not every header names

void offscreen_free(OffscreenTarget *target) {
    if (target == nullptr) {
        return;
    }
    if (platform_gl_is_current()) {
        glBindFramebuffer(GL_FRAMEBUFFER, target->fbo);
        glDeleteRenderbuffers(1, &target->color_rb);
        glDeleteRenderbuffers(1, &target->depth_rb);
        glDeleteFramebuffers(1, &target->fbo);
    }
    memory_free(target);
}

static u32 create_renderbuffer(u32 format, i32 width, i32 height) {
    u32 name = 0;
    glGenRenderbuffers(1, &name);
    glBindRenderbuffer(GL_RENDERBUFFER, name);
    glRenderbufferStorage(GL_RENDERBUFFER, format, width, height);
    return name;
}

bool offscreen_recreate(OffscreenTarget **target, i32 width, i32 height) {
    assert(target != nullptr && width > 0 && height > 0);
    assert(platform_gl_is_current());
    offscreen_free(*target);
    OffscreenTarget *made = memory_new_zeroed<OffscreenTarget>();
    glGenFramebuffers(1, &made->fbo);
    made->color_rb = create_renderbuffer(GL_RGBA8, width, height);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    made->depth_rb = create_renderbuffer(GL_DEPTH_COMPONENT24, width, height);
    glBindFramebuffer(GL_FRAMEBUFFER, made->fbo);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, made->color_rb);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, made->depth_rb);
    const GLenum status = glCheckFramebufferStatus(GL_FRAMEBUFFER);
    if (status != GL_FRAMEBUFFER_COMPLETE) {
        diagnostic_write(L"the graphics cannot hold a picture of %d x %d pixels (framebuffer status 0x%04x)",
                         width, height, status);
    }
    *target = made;
    glBindFramebuffer(GL_FRAMEBUFFER, made->fbo);
    return status == GL_FRAMEBUFFER_COMPLETE;
}

// Forgets the errors until now. Returns one that spoils a picture, or GL_NO_ERROR.
static GLenum grave_error() {
    GLenum grave = GL_NO_ERROR;
    for (i32 i = 0; i < MOST_ERRORS; ++i) {
        const GLenum error = glGetError();
        if (error == GL_NO_ERROR) {
            break;
        }
        if (error == GL_OUT_OF_MEMORY || error == CONTEXT_LOST) {
            grave = error;
        }
    }
    return grave;
}

bool offscreen_read(PixelImage *image) {
    assert(image != nullptr && image->pixels != nullptr);
    assert(platform_gl_is_current());
    GLenum error = grave_error();
    if (error == GL_NO_ERROR && glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        error = GL_INVALID_FRAMEBUFFER_OPERATION;
    }
    if (error == GL_NO_ERROR) {
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, image->width, image->height, GL_BGRA, GL_UNSIGNED_BYTE, image->pixels);
        error = glGetError();
    }
    if (error != GL_NO_ERROR) {
        diagnostic_write(L"the graphics give no picture of %d x %d pixels (error 0x%04x)", image->width,
                         image->height, error);
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    return error == GL_NO_ERROR;
}
