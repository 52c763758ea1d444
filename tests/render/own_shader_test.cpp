// Surface programs that a user writes in place of the project's.
#include <cmath>
#include "gl_test.h"
#include "sim/layer.h"
#include "tests/support/test_support.h"

class OwnShaderTest : public GlTest {};

static const f32 GREY[4] = {0.6F, 0.6F, 0.6F, 1.0F};

static const char *const FRAGMENT =
    "#shader fragment\n#version 130\nuniform vec3 color;\nuniform float alpha;\n"
    "void main() { gl_FragColor = vec4(color, alpha); }\n";

// The least that a surface program can be.
static const std::string SHORTEST =
    std::string(
        "#shader vertex\n#version 130\nin vec3 position;\nuniform mat4 transform;\n"
        "void main() { gl_Position = transform * vec4(position, 1.0); }\n") +
    FRAGMENT;

static void use_own_program(TestScene *scene, const std::string &source) {
    const TemporaryFolder folder;
    test_file_write(folder.file(L"surface.shader"), source);
    scene->surface_program.reset(shader_program_load(folder.file(L"surface.shader").c_str()));
    EXPECT_TRUE(shader_program_is_usable(scene->surface_program.get()));
}

// A plain with a ridge along it and a film with a hole.
static void add_relief(TestScene *scene, const f32 (&film)[4]) {
    scene->add_layer("SUBSTRATE", GREY, [](f32 x, f32, f32) {
        return 0.3F + std::fmax(0.0F, 0.5F - std::fabs(x - 0.3F) * 8.0F);
    });
    scene->add_layer("FILM", film, [](f32 x, f32 y, f32 below) {
        return x > 0.6F && x < 0.8F && y < 0.6F ? below : below + 0.1F;
    });
}

// 1 for each pixel that shows anything but the background.
static std::string silhouette(const TestScene &scene) {
    std::string mask;
    for (i32 y = 0; y < scene.image->height; ++y) {
        for (i32 x = 0; x < scene.image->width; ++x) {
            mask.push_back(is_white(scene.pixel(x, y)) ? '0' : '1');
        }
    }
    return mask;
}

TEST_F(OwnShaderTest, TheShortestProgramShowsTheWholeSection) {
    for (const f32 alpha : {1.0F, 0.5F}) {
        const f32 film[4] = {0.2F, 0.8F, 0.2F, alpha};
        TestScene projects(61, 46, 4.0F);
        TestScene own(61, 46, 4.0F);
        add_relief(&projects, film);
        add_relief(&own, film);
        use_own_program(&own, SHORTEST);
        for (const i32 angle : {5, 30, 60}) {
            projects.stack.camera_angle = own.stack.camera_angle = angle;
            projects.render();
            own.render();
            EXPECT_TRUE(silhouette(projects) == silhouette(own)) << "at " << angle << " degrees";
        }
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
}
