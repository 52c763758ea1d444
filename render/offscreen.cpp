#include "render/offscreen.h"

#include <GL/glew.h>
#include <cstring>
#include "log/log.h"
#include "platform/memory.h"

void offscreen_free(OffscreenTarget *target) {
    if (target == nullptr) {
        return;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, target->fbo);
    glDeleteRenderbuffers(1, &target->color_rb);
    glDeleteRenderbuffers(1, &target->depth_rb);
    glDeleteFramebuffers(1, &target->fbo);
    memory_free(target);
}

static u32 create_renderbuffer(u32 format, i32 width, i32 height) {
    u32 name = 0;
    glGenRenderbuffers(1, &name);
    glBindRenderbuffer(GL_RENDERBUFFER, name);
    glRenderbufferStorage(GL_RENDERBUFFER, format, width, height);
    return name;
}

void offscreen_recreate(OffscreenTarget **target, i32 width, i32 height) {
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
}

void offscreen_read(PixelImage *image) {
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE) {
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, image->width, image->height, GL_BGRA, GL_UNSIGNED_BYTE, image->pixels);
    } else if (image->width > 0 && image->height > 0) {
        // Nothing can be read from an incomplete framebuffer: an empty picture, not stray memory.
        std::memset(image->pixels, 0xFF,
                    static_cast<size_t>(image->width) * static_cast<size_t>(image->height) * 4);
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}
