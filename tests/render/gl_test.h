// gl_test.h: a context for each test that draws, and made-up stacks and their pictures.
#pragma once
#include <GL/glew.h>
#include <gtest/gtest.h>
#include <functional>
#include <string>
#include <vector>
#include "image/pixel_image.h"
#include "platform/platform.h"
#include "render/scene.h"
#include "sim/stack_setup.h"

// Holds a context during each test. A machine without graphics fails the test with the reason.
class GlTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    Owned<PlatformGl> gl;
};

// The path of a file that the program installs.
std::wstring test_data_file(const std::wstring &name);

struct Color {
    i32 red, green, blue;
};

// The height of a layer's top at a place: x and y run from 0 to 1 over the section, `below` is the
// surface that the layer lies on.
using TopFunction = std::function<f32(f32 x, f32 y, f32 below)>;

// A stack of layers made by hand, and what is needed to draw it. Needs a current context.
struct TestScene {
    TestScene(i32 grid_n, i32 grid_m, f32 width);
    ~TestScene();
    TestScene(const TestScene &) = delete;
    TestScene &operator=(const TestScene &) = delete;

    Layer *add_layer(const char *name, const f32 (&color)[4], const TopFunction &top);
    void add_flat_layer(const char *name, const f32 (&color)[4], f32 thickness);
    // Draws the picture, and then what `more` draws over it.
    void render(i32 image_width = 640, const std::function<void()> &more = nullptr);

    Scene as_scene() const;  // what was rendered last

    Color pixel(i32 x, i32 y) const;  // pixels from the lower left corner
    i32 stored_alpha(i32 x, i32 y) const;
    Color pixel_at(f32 x, f32 y, f32 z, f32 dx = 0.0F,
                   f32 dy = 0.0F) const;  // where a point of the section is drawn
    void window_position(f32 x, f32 y, f32 z, f32 *window_x, f32 *window_y) const;
    bool has_ink(i32 x0, i32 y0, i32 x1, i32 y1) const;  // a black pixel in a part of the picture
    std::string pixels() const;

    Stack stack;
    std::vector<GridCell> cells;
    std::vector<LineVertex> line_vertices;
    std::vector<Layer *> layers;  // null for a removed one
    ProcessStep substrate;
    ProcessStep *steps[1];
    StepList step_list;
    Owned<ShaderProgram> surface_program, point_program;
    Owned<Camera> camera;
    Owned<PixelImage> image;           // of the last render
    bool plain_meshes = false;         // draws all of the layers' meshes instead of what can be seen of them
    i32 forced_height = 0;             // of the picture; 0 for the usual one
    PictureStyle style = PLAIN_STYLE;  // but for the width, which render() sets
};

bool is_white(Color color);
bool is_dot(Color color);     // of the height labels: a twentieth of white, while texts are black
i32 brightness(Color color);  // sum of the parts
