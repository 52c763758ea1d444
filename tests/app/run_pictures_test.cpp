// The whole run with pictures, where the machine has an OpenGL context to give.
#include <GL/glew.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>

#include "app/commands.h"
#include "image/image_pack.h"
#include "platform/memory.h"
#include "render/scene.h"
#include "sim/layer.h"
#include "sim/layer_gl.h"
#include "sim/stack_setup.h"
#include "tests/app/app_inputs.h"
#include "tests/app/test_frontend.h"

struct PictureFixture {
    TemporaryFolder folder;
    TestFrontEnd front;
    const wchar_t *no_graphics = nullptr;

    PictureFixture() {
        AppState *state = &front.state;
        state->picture_style.width = 240;  // the width is the state's; a small one is quick
        state->gl_context = platform_gl_create_offscreen(&no_graphics);
        if (state->gl_context == nullptr) {
            return;
        }
        render_state_init();
        const std::string data = QUARN_DATA_FOLDER;
        state->surface_program = shader_program_load(test_wide(data + "/surface.shader").c_str());
        state->point_program = shader_program_load(test_wide(data + "/point.shader").c_str());
        EXPECT_TRUE(shader_program_is_usable(state->surface_program)) << front.console();
        EXPECT_TRUE(shader_program_is_usable(state->point_program)) << front.console();
        front.layout_path = folder.file(L"layout.gds");
        test_file_write(front.layout_path, small_layout_bytes());
        load_gds_command(state);
        front.forget_calls();
    }

    void run(const std::string &steps) {
        front.process_path = folder.file(L"p.txt");
        test_file_write(front.process_path, process_text(steps));
        EXPECT_EQ(front.run(), 0);
        EXPECT_TRUE(platform_gl_is_current()) << "the context is back on the user-interface thread";
    }

    std::vector<std::string> titles() {
        std::vector<std::string> result;
        result.reserve(static_cast<size_t>(front.state.image_count));
        for (i32 i = 0; i < front.state.image_count; ++i) {
            result.push_back(test_utf8(wstring_text(front.state.images[i]->title)));
        }
        return result;
    }
};

#define NEEDS_GRAPHICS(fixture)                                                    \
    if ((fixture).front.state.gl_context == nullptr) {                             \
        GTEST_SKIP() << "no OpenGL context: " << test_utf8((fixture).no_graphics); \
    }

TEST(RunPictures, SubstrateGivesOnePicture) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    fixture.run("");
    EXPECT_EQ(fixture.titles(), std::vector<std::string>{"The substrate"});
    EXPECT_EQ(fixture.front.title(), "The substrate");
    const PixelImage *image = fixture.front.state.images[0];
    EXPECT_EQ(image->width, 240);
    EXPECT_GT(image->height, 64) << "the height of the section and 64 more";
    EXPECT_TRUE(fixture.front.menu()[MENU_SAVE_IMAGES]);
}

// The text of a picture's note; empty when it has none.
static std::string note_of(const PixelImage *image, const std::string &keyword) {
    for (i32 i = 0; image->notes != nullptr && i < image->notes->count; ++i) {
        if (keyword == image->notes->items[i].keyword) {
            return image->notes->items[i].text;
        }
    }
    return "";
}

TEST(RunPictures, TellWhatMadeThem) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    fixture.run(deposition_line("A") + deposition_line("\xC3\x96L"));
    AppState *state = &fixture.front.state;
    ASSERT_EQ(state->image_count, 3);
    const PixelImage *image = state->images[2];
    EXPECT_EQ(note_of(image, "Software"), "Quarn 3.0.0");
    EXPECT_EQ(note_of(image, "Layout"), "layout.gds");
    EXPECT_EQ(note_of(image, "Cell"), "TOP");
    EXPECT_EQ(note_of(image, "Process file"), "p.txt");
    EXPECT_EQ(note_of(image, "Cut"), "x 0 y 0 dx 10 dy 2.5 um");
    EXPECT_EQ(note_of(image, "Step"), "2 \xC3\x96L deposition");
    EXPECT_EQ(note_of(state->images[0], "Step"), "0 substrate");
    // The 10 micrometres of the cut take all but a tenth of the 240 pixels, seen under nearly the same angle:
    // some 0.0458 micrometres a pixel.
    ASSERT_NE(image->notes, nullptr);
    EXPECT_NEAR(image->notes->pixel_width, 10e-6 * 1.1 / 240.0, 0.05 * 10e-6 * 1.1 / 240.0);
    EXPECT_GT(image->notes->pixel_height, 0.5 * image->notes->pixel_width);
    EXPECT_LT(image->notes->pixel_height, 2.0 * image->notes->pixel_width);
}

TEST(RunPictures, ATransparentGroundIsKept) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    fixture.front.state.picture_style.background[3] = 0.0F;
    fixture.run("");
    ASSERT_EQ(fixture.front.state.image_count, 1);
    const Owned<PixelImage> image(image_unpack(fixture.front.state.images[0]));
    ASSERT_NE(image, nullptr);
    EXPECT_TRUE(image->transparent);
    EXPECT_EQ(image->pixels[3], 0) << "the corner shows what lies behind the picture";
    EXPECT_EQ(image->pixels[0], 255);
}

TEST(RunPictures, DumpMakesNone) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    const CurrentFolder here(fixture.folder.path);
    fixture.run(deposition_line("A") + "dump\n" + deposition_line("B"));
    const std::vector<std::string> expected = {"The substrate", "Cross section after A deposition",
                                               "Cross section after B deposition"};
    EXPECT_EQ(fixture.titles(), expected);
    EXPECT_TRUE(test_file_exists(fixture.folder.file(L"VertexData.txt")));
}

TEST(RunPictures, EachPictureIsShownAsItArrives) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    fixture.run(deposition_line("A"));
    const std::vector<std::string> calls = fixture.front.calls();
    const i32 first = call_index(calls, "repaint 0 of 1");
    const i32 second = call_index(calls, "repaint 1 of 2");
    EXPECT_GE(first, 0);
    EXPECT_GT(second, first);
    EXPECT_LT(call_index(calls, "title The substrate"), first) << "the title comes before the picture";
    EXPECT_EQ(fixture.front.state.current_image, 1);
}

TEST(RunPictures, NoneIsShownWhileTheWindowMoves) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    fixture.front.state.sizing = 1;
    fixture.run(deposition_line("A"));
    EXPECT_EQ(fixture.front.state.image_count, 2);
    EXPECT_EQ(fixture.front.state.current_image, 0);
    for (const std::string &call : fixture.front.calls()) {
        EXPECT_NE(call.find("repaint") == 0 ? 0U : 1U, 0U) << call;
    }
}

TEST(RunPictures, TheStoppedStepIsRendered) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    fixture.front.on_console = [&](const std::string &text) {
        if (text.find("Executing A") != std::string::npos) {
            stop_command(&fixture.front.state);
        }
    };
    fixture.run(deposition_line("A") + deposition_line("B"));
    const std::vector<std::string> expected = {"The substrate", "Cross section after A deposition"};
    EXPECT_EQ(fixture.titles(), expected);
}

// The user browses while the worker appends: what is counted is there whole.
TEST(RunPictures, BrowsingDuringARunMeetsWholePicturesOnly) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    AppState *state = &fixture.front.state;
    std::atomic<bool> over{false};
    i32 met = 0;
    std::thread user;
    fixture.front.on_repaint = [&] {
        if (!user.joinable()) {
            user = std::thread([&] {
                while (!over) {
                    met += browse_images(state, 1);
                    const PixelImage *image = state->images[state->current_image];
                    EXPECT_EQ(image->width, 240);
                }
            });
        }
    };
    fixture.front.on_console = [&](const std::string &text) {
        if (text.find("All process steps") == 0) {
            over = true;
            user.join();
        }
    };
    fixture.run(deposition_line("A") + deposition_line("B") + deposition_line("C") + deposition_line("D"));
    EXPECT_GT(met, 0);
    EXPECT_EQ(state->image_count, 5);
}

TEST(RunPictures, TitlesAreWidenedByteByByte) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    fixture.run(deposition_line("\xC3\xA9"));
    // Bytes 0xC3 and 0xA9 extend their sign to the units 0xFFC3 and 0xFFA9.
    std::wstring expected = L"Cross section after ";
    expected += static_cast<wchar_t>(0xFFC3);
    expected += static_cast<wchar_t>(0xFFA9);
    expected += L" deposition";
    ASSERT_EQ(fixture.front.state.image_count, 2);
    EXPECT_EQ(wstring_text(fixture.front.state.images[1]->title), expected);
}

TEST(RunPictures, ALegendNeedsItsRows) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    std::string steps;
    for (char name = 'A'; name <= 'H'; ++name) {
        steps += deposition_line(std::string(1, name));
    }
    fixture.front.process_path = fixture.folder.file(L"legend.txt");
    std::string text = process_text(steps);
    text.replace(text.find("-N 200"), 6, "-N 200 -legend");
    test_file_write(fixture.front.process_path, text);
    ASSERT_EQ(fixture.front.run(), 0);
    // Nine layers of 36 pixels are more than the section needs at this width.
    EXPECT_EQ(fixture.front.state.images[8]->height, 324);
}

TEST(RunPictures, HeightsAreThoseOfARunWithoutPictures) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    const std::string steps =
        deposition_line("A") + "photo -name P -mask_id 1 -type 1 -res 0.2 -thickness 300\n" +
        "etch -targets t_A -depth 60 -iso 0.5\nstrip\n" + deposition_line("B") + "release -targets t_B\n";
    fixture.run(steps);

    TestFrontEnd *front = &fixture.front;
    const Owned<Stack> with_pictures(front->state.stack);
    front->state.stack = nullptr;
    PlatformGl *context = front->state.gl_context;
    front->state.gl_context = nullptr;
    platform_gl_make_current(nullptr);
    EXPECT_EQ(front->run(), 0);
    front->state.gl_context = context;
    platform_gl_make_current(context);

    const Stack *without = front->state.stack;
    EXPECT_EQ(front->state.image_count, 0);
    ASSERT_EQ(with_pictures->layer_count, without->layer_count);
    EXPECT_EQ(with_pictures->live_layer_count, without->live_layer_count);
    EXPECT_EQ(with_pictures->max_height, without->max_height);
    const size_t bytes =
        static_cast<size_t>(without->grid_n) * static_cast<size_t>(without->grid_m) * sizeof(f32);
    for (i32 i = 0; i < without->layer_count; ++i) {
        const Layer *a = with_pictures->layers[i];
        const Layer *b = without->layers[i];
        ASSERT_EQ(a == nullptr, b == nullptr) << "slot " << i;
        if (a != nullptr) {
            EXPECT_EQ(std::memcmp(a->top, b->top, bytes), 0) << "top of slot " << i;
            EXPECT_EQ(std::memcmp(a->bottom, b->bottom, bytes), 0) << "bottom of slot " << i;
        }
    }
}

// Stand-ins for entry points of OpenGL, whose pointers are open to a test: a driver that fails after some
// calls.
static i32 calls_that_succeed = 0;
static PFNGLCHECKFRAMEBUFFERSTATUSPROC real_check = nullptr;

static GLenum GLAPIENTRY check_that_fails(GLenum target) {
    return calls_that_succeed-- > 0 ? real_check(target) : GL_FRAMEBUFFER_UNSUPPORTED;
}

// While it is in scope framebuffers are complete for a number of looks at them; each picture takes two.
struct FailingFramebuffers {
    explicit FailingFramebuffers(i32 looks) {
        calls_that_succeed = looks;
        real_check = glCheckFramebufferStatus;
        glCheckFramebufferStatus = check_that_fails;
    }
    ~FailingFramebuffers() { glCheckFramebufferStatus = real_check; }
    FailingFramebuffers(const FailingFramebuffers &) = delete;
    FailingFramebuffers &operator=(const FailingFramebuffers &) = delete;
};

TEST(RunPictures, AFramebufferThatCannotBeUsedEndsTheRun) {
    for (const i32 looks : {2, 3}) {  // the second picture is not drawn, or not read
        PictureFixture fixture;
        NEEDS_GRAPHICS(fixture);
        {
            const FailingFramebuffers failing(looks);
            fixture.run(deposition_line("A") + deposition_line("B"));
        }
        EXPECT_EQ(fixture.titles(), std::vector<std::string>{"The substrate"});
        EXPECT_EQ(fixture.front.state.run_failure, RUN_NO_GRAPHICS);
        EXPECT_EQ(fixture.front.messages(), "Could not initialize graphics\n");
        EXPECT_EQ(fixture.front.title(), "The substrate") << "the title is that of the picture on show";
        EXPECT_NE(fixture.front.diagnostics(), "");
        EXPECT_EQ(fixture.front.console().find("Executing B"), std::string::npos);
        EXPECT_NE(fixture.front.console().find("All process steps completed in"), std::string::npos);
        EXPECT_TRUE(fixture.front.menu()[MENU_SAVE_IMAGES]) << "what there is can be saved";

        fixture.run(deposition_line("A"));
        EXPECT_EQ(fixture.front.state.run_failure, RUN_NO_FAILURE) << "the next run is judged by itself";
        EXPECT_EQ(fixture.front.state.image_count, 2);
    }
}

// A thread that takes the context when it is told to and keeps it to the end of the scope.
struct ContextThief {
    PlatformGl *context;
    PlatformThread *thread = nullptr;
    Owned<PlatformSemaphore> taken{platform_semaphore_create()};
    Owned<PlatformSemaphore> give_back{platform_semaphore_create()};

    explicit ContextThief(PlatformGl *wanted) : context(wanted) {}
    ~ContextThief() {
        platform_semaphore_post(give_back.get());
        if (thread != nullptr) {
            platform_thread_join(thread);
        }
    }
    ContextThief(const ContextThief &) = delete;
    ContextThief &operator=(const ContextThief &) = delete;

    void take() {
        thread = platform_thread_start(keep, this);
        platform_semaphore_wait(taken.get());
    }
    static i32 keep(void *argument) {
        auto *thief = static_cast<ContextThief *>(argument);
        EXPECT_TRUE(platform_gl_make_current(thief->context));
        platform_semaphore_post(thief->taken.get());
        platform_semaphore_wait(thief->give_back.get());
        platform_gl_make_current(nullptr);
        return 0;
    }
};

TEST(RunPictures, AContextThatDoesNotComeBackEndsTheRun) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    fixture.front.process_path = fixture.folder.file(L"p.txt");
    test_file_write(fixture.front.process_path, process_text(deposition_line("A") + deposition_line("B")));
    {
        ContextThief thief(fixture.front.state.gl_context);
        fixture.front.on_repaint = [&]() {
            if (fixture.front.state.image_count == 2) {
                thief.take();
            }
        };
        EXPECT_EQ(fixture.front.run(), 0);
        EXPECT_FALSE(platform_gl_is_current());
    }
    EXPECT_TRUE(platform_gl_make_current(fixture.front.state.gl_context));
    const std::vector<std::string> expected = {"The substrate", "Cross section after A deposition"};
    EXPECT_EQ(fixture.titles(), expected);
    EXPECT_EQ(fixture.front.state.run_failure, RUN_NO_GRAPHICS);
    EXPECT_EQ(fixture.front.messages(), "Could not initialize graphics\n");
    EXPECT_EQ(fixture.front.diagnostics(),
              "the OpenGL context cannot be taken back: the run ends here\n"
              "the graphics cannot be used any more; save the images and start Quarn anew\n");
    EXPECT_EQ(fixture.front.console().find("Executing B"), std::string::npos);
}

// A picture so large that the memory for it cannot be had; the graphics are not asked for it.
TEST(RunPictures, APictureWithoutMemoryEndsTheRun) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    fixture.front.on_console = [&](const std::string &text) {
        if (text.find("Executing A") != std::string::npos) {
            fixture.front.state.picture_style.width = I32_MAX / 2;
        }
    };
    fixture.run(deposition_line("A") + deposition_line("B"));
    EXPECT_EQ(fixture.titles(), std::vector<std::string>{"The substrate"});
    EXPECT_EQ(fixture.front.state.run_failure, RUN_NO_MEMORY);
    EXPECT_NE(fixture.front.diagnostics().find("no memory for a picture of 1073741823 x "),
              std::string::npos);
    EXPECT_EQ(fixture.front.messages(), "");
    EXPECT_EQ(fixture.front.console().find("Executing B"), std::string::npos);
    EXPECT_NE(fixture.front.console().find("All process steps completed in"), std::string::npos);
}

TEST(RunPictures, ThePicturesAreKeptPacked) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    fixture.run("");
    const PixelImage *image = fixture.front.state.images[0];
    EXPECT_EQ(image->pixels, nullptr);
    EXPECT_GT(image->packed_size, 0);
}

TEST(RunPictures, WithAFolderThePicturesAreWrittenDuringTheRunAndNothingIsKept) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    fixture.run(deposition_line("A"));
    const Owned<PixelImage> kept(image_unpack(fixture.front.state.images[1]));
    ASSERT_EQ(image_save(kept.get(), fixture.folder.file(L"kept.bmp").c_str(), IMAGE_BMP), 0);

    const std::wstring out = fixture.folder.file(L"out");
    ASSERT_EQ(platform_folder_create(out.c_str()), PLATFORM_FOLDER_CREATED);
    fixture.front.state.picture_folder = picture_folder_open(out.c_str(), IMAGE_BMP);
    fixture.front.on_console = [&](const std::string &text) {
        if (text.find("Executing B") != std::string::npos) {
            EXPECT_TRUE(test_file_exists(out + L"/000 The substrate.bmp"));
        } else if (text.find("All process steps") == 0) {
            const std::vector<std::wstring> all = {L"000 The substrate.bmp",
                                                   L"001 Cross section after A deposition.bmp",
                                                   L"002 Cross section after B deposition.bmp"};
            EXPECT_EQ(test_folder_list(out), all);
        }
    };
    fixture.run(deposition_line("A") + deposition_line("B"));
    ASSERT_EQ(fixture.front.state.image_count, 3);
    for (i32 i = 0; i < 3; ++i) {
        EXPECT_EQ(fixture.front.state.images[i]->pixels, nullptr);
        EXPECT_EQ(fixture.front.state.images[i]->packed, nullptr);
    }
    EXPECT_TRUE(test_file_read(fixture.folder.file(L"kept.bmp")) ==
                test_file_read(out + L"/001 Cross section after A deposition.bmp"));
}

// Folders lie where the pictures and the dump should.
TEST(RunPictures, FaultsOfPicturesAndDumpsAreToldInTheOrderOfTheSteps) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    const CurrentFolder here(fixture.folder.path);
    const std::wstring out = fixture.folder.file(L"out");
    for (const std::wstring &name : {std::wstring(), std::wstring(L"/000 The substrate.png"),
                                     std::wstring(L"/001 Cross section after A deposition.png")}) {
        ASSERT_EQ(platform_folder_create((out + name).c_str()), PLATFORM_FOLDER_CREATED);
    }
    fixture.front.state.picture_folder = picture_folder_open(out.c_str(), IMAGE_PNG);
    fixture.front.on_console = [&](const std::string &text) {
        if (text.find("Running process") == 0) {
            platform_folder_create(L"VertexData.txt");
        }
    };
    fixture.run("dump\n" + deposition_line("A") + "dump\n");
    EXPECT_EQ(fixture.front.state.picture_folder->failed, 2);
    std::string told = fixture.front.diagnostics();
    for (const char *part : {"000 The substrate.png: ", "VertexData.txt could not be",
                             "001 Cross section after A deposition.png: ", "VertexData.txt could not be"}) {
        const size_t at = told.find(part);
        ASSERT_NE(at, std::string::npos) << part << " is missing from the rest: " << told;
        told.erase(0, at + 1);
    }
}

// The dots of ten lines over a grid of 200 x 50, in which they are 199 / 9 points apart both ways: at the
// columns and rows below these products, at the height of the stack there.
static std::vector<LineVertex> line_vertices_by_hand(const Stack *stack) {
    const i32 places[10] = {0, 22, 44, 66, 88, 110, 132, 154, 176, 199};
    std::vector<LineVertex> vertices;
    for (i32 j = 0; j < 2; ++j) {
        for (i32 c = 0; c < 10; ++c) {
            f32 height = 0.0F;
            for (i32 i = 0; i < stack->layer_count; ++i) {
                const Layer *layer = stack->layers[i];
                height = layer != nullptr ? layer->top[places[j] * 200 + places[c]] : height;
            }
            const f32 x = static_cast<f32>(places[c]) * 0.05F;
            const f32 y = static_cast<f32>(places[j]) * 0.05F;
            vertices.push_back({{x, y, height}, {0.0F, 0.0F, 0.0F}, 0.95F});
        }
    }
    return vertices;
}

// Draws a stack of layers whose meshes are there as the run should have drawn it: a section 10 wide and 2.5
// deep seen from 60 degrees, with heights.
static Owned<PixelImage> draw_by_hand(const AppState *state, f32 highest) {
    std::vector<LineVertex> vertices = line_vertices_by_hand(state->stack);
    Stack stack = *state->stack;
    stack.width = 10.0F;
    stack.depth = 2.5F;
    stack.camera_angle = 60;
    stack.show_heights = 1;
    stack.line_points = 2;  // (10 x 50 - 10) / 199
    stack.line_vertices = vertices.data();
    lines_gl_create(&stack);
    glBindBuffer(GL_ARRAY_BUFFER, stack.line_vbo);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(LineVertex)),
                 vertices.data(), GL_STATIC_DRAW);
    const Owned<Camera> camera(camera_create(10.0F, 2.5F, highest, 60.0F));
    const i32 height = static_cast<i32>(240.0F / camera->aspect + 64.0F);
    const Scene scene = {&stack, camera.get(), state->surface_program, state->point_program,
                         &state->picture_style};
    OffscreenTarget *target = nullptr;
    offscreen_recreate(&target, 240, height);
    const Owned<OffscreenTarget> drawn(target);
    scene_render(&scene, height);
    Owned<PixelImage> image(image_create(240, height, L"by hand"));
    offscreen_read(image.get());
    lines_gl_delete(&stack);
    return image;
}

TEST(RunPictures, AreThoseOfASceneSetUpByHand) {
    PictureFixture fixture;
    NEEDS_GRAPHICS(fixture);
    fixture.front.process_path = fixture.folder.file(L"heights.txt");
    std::string text = process_text(
        "deposition -name A -type t_A -thickness 1000 -sc 0 -color 200 100 50 100\n"
        "photo -name P -mask_id 1 -type 1 -res 0.2 -thickness 300\n"
        "etch -targets t_A -depth 600\nstrip\n");
    text.replace(text.find("-N 200"), 6, "-N 200 -angle 60 -heights");
    test_file_write(fixture.front.process_path, text);
    ASSERT_EQ(fixture.front.run(), 0) << fixture.front.console();
    const AppState *state = &fixture.front.state;
    ASSERT_EQ(state->image_count, 5) << fixture.front.console();
    const Layer *substrate = state->stack->layers[0];
    const Layer *film = state->stack->layers[1];
    ASSERT_NE(film->top[25 * 200 + 50], film->top[25 * 200 + 150]) << "the etch leaves a step";

    const Owned<PixelImage> shown(image_unpack(state->images[4]));
    const Owned<PixelImage> expected = draw_by_hand(state, substrate->top[0] + 1.0F);
    ASSERT_EQ(shown->width, expected->width);
    ASSERT_EQ(shown->height, expected->height);
    const size_t bytes = static_cast<size_t>(shown->width) * static_cast<size_t>(shown->height) * 4;
    EXPECT_EQ(std::memcmp(expected->pixels, shown->pixels, bytes), 0);
}

// A run with everything that changes heights: films over each other, a wall, a film that is taken away below.
static const char *const FINE_STEPS =
    "deposition -name A -type t_A -thickness 400 -sc 0 -color 0 200 0 100\n"
    "deposition -name B -type t_B -thickness 300 -sc 1 -color 200 0 0 100\n"
    "deposition -name GLASS -type t_G -thickness 200 -sc 1 -color 0 0 200 40\n"
    "photo -name P -mask_id 1 -type 1 -res 0.2 -thickness 300\n"
    "etch -targets t_G t_B -depth 600\nstrip\n"
    "etch -targets t_A -depth 1000 -iso 1\n"
    "dump\n";

struct StyledRun {
    std::string console, dump;
    std::vector<std::string> titles;
    std::vector<i32> heights;  // of the pictures
};

static StyledRun run_with_style(bool fine, f32 vertical_scale) {
    PictureFixture fixture;
    StyledRun result;
    if (fixture.front.state.gl_context == nullptr) {
        return result;
    }
    fixture.front.state.picture_style.fine = fine;
    fixture.front.state.picture_style.vertical_scale = vertical_scale;
    const CurrentFolder here(fixture.folder.path);
    fixture.run(FINE_STEPS);
    const std::string console = mask_seconds(fixture.front.console());
    result.console = console.substr(console.find("Extracting"));  // before it stands the folder
    result.dump = test_file_read(fixture.folder.file(L"VertexData.txt"));
    result.titles = fixture.titles();
    for (i32 i = 0; i < fixture.front.state.image_count; ++i) {
        result.heights.push_back(fixture.front.state.images[i]->height);
    }
    EXPECT_EQ(fixture.front.diagnostics(), "");
    return result;
}

TEST(RunPictures, TheStyleChangesPicturesAndNothingElse) {
    const StyledRun plain = run_with_style(false, 1.0F);
    if (plain.titles.empty()) {
        GTEST_SKIP() << "no OpenGL context";
    }
    ASSERT_EQ(plain.titles.size(), 8U);
    const StyledRun fine = run_with_style(true, 1.0F);
    const StyledRun high = run_with_style(false, 5.0F);
    for (const StyledRun *run : {&fine, &high}) {
        EXPECT_EQ(run->console, plain.console);
        EXPECT_EQ(run->dump, plain.dump);
        EXPECT_EQ(run->titles, plain.titles);
    }
    EXPECT_NE(plain.dump, "");
    for (size_t i = 0; i < 8; ++i) {
        EXPECT_GT(high.heights[i], plain.heights[i]) << "five times as high, picture " << i;
    }
}
