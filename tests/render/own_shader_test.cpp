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

// One that cuts everything below a height off, as the project's own leaves undersides out.
static const std::string CUTTING =
    std::string(
        "#shader vertex\n#version 130\nin vec3 position;\nuniform mat4 transform;\n"
        "uniform bool hideUndersides;\nvoid main() {\n"
        "gl_Position = transform * vec4(position, 1.0);\n"
        "gl_ClipDistance[0] = hideUndersides ? position.z - 0.2 : 1.0;\n}\n") +
    FRAGMENT;

// Whether clipping was on at any time when a layer's vertices were bound, as they are for drawing.
static bool clipping_seen;
static PFNGLBINDVERTEXARRAYPROC bind_vertex_array;

static void GLAPIENTRY watch_clipping(GLuint name) {
    clipping_seen = clipping_seen || glIsEnabled(GL_CLIP_DISTANCE0) == GL_TRUE;
    bind_vertex_array(name);
}

static bool renders_with_clipping(TestScene *scene) {
    clipping_seen = false;
    bind_vertex_array = glBindVertexArray;
    glBindVertexArray = watch_clipping;
    scene->render();
    glBindVertexArray = bind_vertex_array;
    return clipping_seen;
}

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

TEST_F(OwnShaderTest, AProgramWithoutClippingShowsTheWholeSection) {
    for (const f32 alpha : {1.0F, 0.5F}) {
        const f32 film[4] = {0.2F, 0.8F, 0.2F, alpha};
        TestScene projects(61, 46, 4.0F);
        TestScene own(61, 46, 4.0F);
        add_relief(&projects, film);
        add_relief(&own, film);
        use_own_program(&own, SHORTEST);
        for (const i32 angle : {5, 30, 60}) {
            projects.stack.camera_angle = own.stack.camera_angle = angle;
            EXPECT_TRUE(renders_with_clipping(&projects)) << "undersides cost time";
            EXPECT_FALSE(renders_with_clipping(&own)) << "what is drawn without a distance is undefined";
            EXPECT_TRUE(silhouette(projects) == silhouette(own)) << "at " << angle << " degrees";
        }
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
}

TEST_F(OwnShaderTest, AProgramThatClipsIsAskedToForOpaqueLayersOnly) {
    for (const f32 alpha : {1.0F, 0.5F}) {
        const f32 color[4] = {0.2F, 0.8F, 0.2F, alpha};
        TestScene scene(61, 46, 4.0F);
        scene.add_flat_layer("SUBSTRATE", color, 0.4F);
        use_own_program(&scene, CUTTING);
        scene.render();
        EXPECT_FALSE(is_white(scene.pixel_at(2.0F, 0.0F, 0.3F))) << "alpha " << alpha;
        EXPECT_EQ(is_white(scene.pixel_at(2.0F, 0.0F, 0.1F)), alpha >= 1.0F) << "alpha " << alpha;
    }
    EXPECT_EQ(glIsEnabled(GL_CLIP_DISTANCE0), GL_FALSE) << "nothing else that is drawn is clipped";
}
