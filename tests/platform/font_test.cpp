// Draws texts into a small picture and looks at the ink: black pixels on white, y upwards, as OpenGL
// reads them back.
#include <GL/glew.h>
#include <gtest/gtest.h>
#ifndef _WIN32
#include <fontconfig/fontconfig.h>
#endif

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "tests/support/test_support.h"

static constexpr i32 SIDE = 128;  // of the picture, pixels
static constexpr i32 LEFT = 20;   // where texts start
static constexpr i32 BASELINE = 50;

// Ink of a drawn text; the box is empty (low above high) without any.
struct Ink {
    std::vector<u8> pixels;  // SIDE x SIDE, 1 where there is ink
    i32 count;
    i32 x_low, x_high, y_low, y_high;  // both ends included
    f32 advance;                       // of the raster position, pixels
    f32 rise;                          // upwards, pixels

    bool at(i32 x, i32 y) const {
        return pixels[static_cast<size_t>(y) * SIDE + static_cast<size_t>(x)] != 0;
    }
    i32 in_row(i32 y) const {
        i32 sum = 0;
        for (i32 x = 0; x < SIDE; ++x) {
            sum += at(x, y) ? 1 : 0;
        }
        return sum;
    }
    i32 in_column(i32 x) const {
        i32 sum = 0;
        for (i32 y = 0; y < SIDE; ++y) {
            sum += at(x, y) ? 1 : 0;
        }
        return sum;
    }
};

// A context with a white picture bound and room for one font.
struct Canvas {
    Canvas() {
        const wchar_t *reason = nullptr;
        gl.reset(platform_gl_create_offscreen(&reason));
        if (gl == nullptr) {
            ADD_FAILURE() << "no graphics: " << test_utf8(reason);
            return;
        }
        glGenFramebuffers(1, &fbo);
        glGenRenderbuffers(1, &color);
        glBindRenderbuffer(GL_RENDERBUFFER, color);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, SIDE, SIDE);
        glBindFramebuffer(GL_FRAMEBUFFER, fbo);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color);
        glViewport(0, 0, SIDE, SIDE);
        base = glGenLists(256);
    }
    ~Canvas() {
        if (gl != nullptr) {
            EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
            glDeleteLists(base, 256);
            glBindFramebuffer(GL_FRAMEBUFFER, 0);
            glDeleteRenderbuffers(1, &color);
            glDeleteFramebuffers(1, &fbo);
        }
    }
    Canvas(const Canvas &) = delete;
    Canvas &operator=(const Canvas &) = delete;

    PlatformFontMetrics load(i32 height, i32 weight) const {
        PlatformFontMetrics metrics = {};
        EXPECT_TRUE(platform_font_lists(base, height, weight, &metrics)) << "no font";
        return metrics;
    }

    Ink draw(const std::string &text) const {
        glClearColor(1.0F, 1.0F, 1.0F, 1.0F);
        glClear(GL_COLOR_BUFFER_BIT);
        glColor4f(0.0F, 0.0F, 0.0F, 1.0F);
        glWindowPos2f(static_cast<f32>(LEFT), static_cast<f32>(BASELINE));
        glListBase(base);
        glCallLists(static_cast<GLsizei>(text.size()), GL_UNSIGNED_BYTE, text.data());
        f32 raster[4] = {};
        glGetFloatv(GL_CURRENT_RASTER_POSITION, raster);
        std::vector<u8> rgba(size_t{SIDE} * SIDE * 4);
        glReadPixels(0, 0, SIDE, SIDE, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
        Ink ink = {std::vector<u8>(size_t{SIDE} * SIDE),
                   0,
                   SIDE,
                   -1,
                   SIDE,
                   -1,
                   raster[0] - LEFT,
                   raster[1] - BASELINE};
        for (i32 y = 0; y < SIDE; ++y) {
            for (i32 x = 0; x < SIDE; ++x) {
                const size_t i = static_cast<size_t>(y) * SIDE + static_cast<size_t>(x);
                if (rgba[i * 4] < 128) {
                    ink.pixels[i] = 1;
                    ++ink.count;
                    ink.x_low = std::min(ink.x_low, x);
                    ink.x_high = std::max(ink.x_high, x);
                    ink.y_low = std::min(ink.y_low, y);
                    ink.y_high = std::max(ink.y_high, y);
                }
            }
        }
        return ink;
    }

    Owned<PlatformGl> gl;
    GLuint fbo = 0;
    GLuint color = 0;
    GLuint base = 0;
};

TEST(PlatformFontLists, MetricsFollowTheHeight) {
    const Canvas canvas;
    for (const i32 height : {10, 24, 30, 32, 60}) {
        const PlatformFontMetrics regular = canvas.load(height, 400);
        EXPECT_EQ(regular.height, height);
        // The average of a proportional face lies between a third and two thirds of its cell height.
        EXPECT_GE(regular.avg_char_width * 3, height);
        EXPECT_LE(regular.avg_char_width * 3, height * 2);
        const PlatformFontMetrics bold = canvas.load(height, 700);
        EXPECT_EQ(bold.height, height);
        EXPECT_GE(bold.avg_char_width, regular.avg_char_width);
    }
}

TEST(PlatformFontLists, TheAverageIsThatOfRunningText) {
    // The mean over all glyphs of a face is a fifth wider.
    const std::string text =
        "the layers of a section are drawn one after another from the lowest to the highest";
    const Canvas canvas;
    for (const i32 weight : {400, 700}) {
        for (const i32 height : {24, 30, 32, 60, 96}) {
            const f32 average = static_cast<f32>(canvas.load(height, weight).avg_char_width);
            const f32 drawn = canvas.draw(text).advance / static_cast<f32>(text.size());
            EXPECT_NEAR(drawn, average, 0.5F + 0.04F * drawn) << "height " << height << ", weight " << weight;
        }
    }
}

TEST(PlatformFontLists, TheInkOfACapitalStandsOnTheBaseline) {
    const Canvas canvas;
    for (const i32 height : {16, 24, 32}) {
        canvas.load(height, 400);
        const Ink ink = canvas.draw("H");
        ASSERT_GT(ink.count, 0) << "height " << height;
        EXPECT_EQ(ink.y_low, BASELINE) << "height " << height;
        // A capital takes between half and four fifths of the cell.
        const i32 tall = ink.y_high - ink.y_low + 1;
        EXPECT_GE(tall * 10, height * 5) << "height " << height;
        EXPECT_LE(tall * 10, height * 8) << "height " << height;
        EXPECT_GE(ink.x_low, LEFT);
        EXPECT_LT(static_cast<f32>(ink.x_high), static_cast<f32>(LEFT) + ink.advance);
        EXPECT_EQ(ink.rise, 0.0F);
    }
}

TEST(PlatformFontLists, PicturesAreUprightAndNotMirrored) {
    const Canvas canvas;
    canvas.load(32, 400);
    const Ink ink = canvas.draw("L");
    ASSERT_GT(ink.count, 0);
    // The stem on the left, the bar at the bottom.
    EXPECT_GT(ink.in_row(ink.y_low), 2 * ink.in_row(ink.y_high));
    EXPECT_GT(ink.in_column(ink.x_low), 2 * ink.in_column(ink.x_high));
    // The dot of the i leaves a gap below it.
    const Ink dotted = canvas.draw("i");
    i32 gaps = 0;
    for (i32 y = dotted.y_low; y <= dotted.y_high; ++y) {
        gaps += dotted.in_row(y) == 0 ? 1 : 0;
    }
    EXPECT_GE(gaps, 1);
    const i32 middle = (dotted.y_low + dotted.y_high) / 2;
    for (i32 y = dotted.y_low; y <= middle; ++y) {
        EXPECT_GT(dotted.in_row(y), 0) << "the stem is below the gap, row " << y;
    }
}

TEST(PlatformFontLists, DescendersReachBelowTheBaseline) {
    const Canvas canvas;
    canvas.load(32, 400);
    EXPECT_LT(canvas.draw("g").y_low, BASELINE);
    EXPECT_LT(canvas.draw(",").y_low, BASELINE);
}

TEST(PlatformFontLists, EveryCharacterFitsIntoTheCell) {
    const Canvas canvas;
    const PlatformFontMetrics metrics = canvas.load(32, 700);
    i32 low = BASELINE;
    i32 high = BASELINE;
    for (i32 character = 1; character < 255; ++character) {
        const Ink ink = canvas.draw(std::string(1, static_cast<char>(character)));
        EXPECT_GE(ink.advance, 0.0F) << "character " << character;
        EXPECT_EQ(ink.advance, static_cast<f32>(static_cast<i32>(ink.advance))) << "character " << character;
        if (ink.count > 0) {
            low = std::min(low, ink.y_low);
            high = std::max(high, ink.y_high);
        }
    }
    // Rounding to whole pixels may add one at either end.
    EXPECT_LE(high - low + 1, metrics.height + 2);
}

TEST(PlatformFontLists, BlanksAdvanceWithoutInk) {
    const Canvas canvas;
    canvas.load(24, 400);
    const Ink blank = canvas.draw(" ");
    EXPECT_EQ(blank.count, 0);
    EXPECT_GE(blank.advance, 3.0F);
    EXPECT_LE(blank.advance, 12.0F);
    EXPECT_EQ(canvas.draw("\xA0").advance, blank.advance) << "the blank that does not break";
    const Ink between = canvas.draw("i i");
    const Ink letters = canvas.draw("ii");
    EXPECT_EQ(between.count, letters.count);
    EXPECT_EQ(between.advance, letters.advance + blank.advance);
}

TEST(PlatformFontLists, WidthsFollowTheCharacter) {
    const Canvas canvas;
    canvas.load(24, 400);
    const f32 narrow = canvas.draw("i").advance;
    const f32 wide = canvas.draw("W").advance;
    EXPECT_LT(2.0F * narrow, wide);
    const f32 digit = canvas.draw("0").advance;
    for (char character = '1'; character <= '9'; ++character) {
        EXPECT_EQ(canvas.draw(std::string(1, character)).advance, digit) << character;
    }
    EXPECT_EQ(canvas.draw("W0i").advance, wide + digit + narrow);
}

TEST(PlatformFontLists, BoldHasMoreInk) {
    const Canvas canvas;
    canvas.load(32, 400);
    const i32 regular = canvas.draw("Hi").count;
    canvas.load(32, 599);
    EXPECT_EQ(canvas.draw("Hi").count, regular);
    canvas.load(32, 600);
    const i32 bold = canvas.draw("Hi").count;
    EXPECT_GT(bold * 10, regular * 12);
    canvas.load(32, 900);
    EXPECT_EQ(canvas.draw("Hi").count, bold);
}

TEST(PlatformFontLists, HighBytesAreCodePoints) {
    const Canvas canvas;
    canvas.load(32, 400);
    const Ink plain = canvas.draw("e");
    const Ink accented = canvas.draw("\xE9");
    EXPECT_EQ(accented.advance, plain.advance);
    EXPECT_GT(accented.count, plain.count);
    EXPECT_GT(accented.y_high, plain.y_high);
    // 0x80 to 0x9F are controls, like 0x01, and no letters of some code page.
    const Ink control = canvas.draw("\x01");
    for (i32 character = 0x80; character <= 0x9F; ++character) {
        const Ink ink = canvas.draw(std::string(1, static_cast<char>(character)));
        EXPECT_EQ(ink.pixels, control.pixels) << "character " << character;
        EXPECT_EQ(ink.advance, control.advance) << "character " << character;
    }
}

TEST(PlatformFontLists, MicroSignHasInk) {
    const Canvas canvas;
    canvas.load(24, 700);
    EXPECT_GT(canvas.draw("\xB5").count, 0);
}

TEST(PlatformFontLists, LeavesTheLastListAlone) {
    const Canvas canvas;
    glNewList(canvas.base + 255, GL_COMPILE);
    const u8 nothing = 0;
    glBitmap(0, 0, 0.0F, 0.0F, 77.0F, 0.0F, &nothing);
    glEndList();
    canvas.load(24, 400);
    EXPECT_EQ(canvas.draw("\xFF").advance, 77.0F);
}

TEST(PlatformFontLists, NeitherHeedsNorChangesHowPixelsAreUnpacked) {
    const Canvas canvas;
    canvas.load(24, 700);
    const Ink expected = canvas.draw("Ag");
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffer);
    glBufferData(GL_PIXEL_UNPACK_BUFFER, 64, nullptr, GL_STATIC_DRAW);
    const struct {
        GLenum name;
        GLint value;
    } states[] = {{GL_UNPACK_ALIGNMENT, 8},
                  {GL_UNPACK_ROW_LENGTH, 77},
                  {GL_UNPACK_SKIP_ROWS, 3},
                  {GL_UNPACK_SKIP_PIXELS, 5},
                  {GL_UNPACK_LSB_FIRST, 1}};
    for (const auto &state : states) {
        glPixelStorei(state.name, state.value);
    }
    canvas.load(24, 700);
    for (const auto &state : states) {
        GLint value = -1;
        glGetIntegerv(state.name, &value);
        EXPECT_EQ(value, state.value) << "state " << state.name;
    }
    GLint bound = 0;
    glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &bound);
    EXPECT_EQ(static_cast<GLuint>(bound), buffer);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    glDeleteBuffers(1, &buffer);
    EXPECT_EQ(canvas.draw("Ag").pixels, expected.pixels);
}

TEST(PlatformFontLists, AHeightOfNothingIsOnePixel) {
    const Canvas canvas;
    EXPECT_EQ(canvas.load(0, 400).height, 1);
    EXPECT_EQ(canvas.load(-5, 400).height, 1);
}

#ifndef _WIN32
// The rest runs in processes of its own, since fonts are looked up once a process: with a set-up that
// knows one folder of fonts only.
static void use_fonts_of(const TemporaryFolder &folder) {
    const std::string path = test_utf8(folder.path);
    test_file_write(folder.file(L"fonts.conf"), "<?xml version=\"1.0\"?>\n<fontconfig><dir>" + path +
                                                    "</dir><cachedir>" + path +
                                                    "/cache</cachedir></fontconfig>\n");
    setenv("FONTCONFIG_FILE", (path + "/fonts.conf").c_str(), 1);
}

static void expect(bool fact, const char *words) {
    if (!fact) {
        std::fprintf(stderr, "wrong: %s\n", words);
    }
}

static void draw_without_fonts() {
    {
        const TemporaryFolder folder;
        use_fonts_of(folder);
        const Canvas canvas;
        PlatformFontMetrics metrics = {};
        expect(!platform_font_lists(canvas.base, 30, 700, &metrics), "there is no font");
        expect(metrics.height == 30, "the height is the one asked for");
        expect(metrics.avg_char_width >= 10 && metrics.avg_char_width <= 20, "the width is estimated");
        expect(glIsList(canvas.base) == GL_TRUE && glIsList(canvas.base + 254) == GL_TRUE,
               "the lists are there");
        const Ink ink = canvas.draw("Hi");
        expect(ink.count == 0 && ink.advance == 0.0F, "the lists are empty");
    }
    std::fprintf(stderr, "done");
    std::_Exit(0);
}

TEST(PlatformFontListsDeathTest, WithoutAnyFontTheListsAreEmpty) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(draw_without_fonts(), testing::ExitedWithCode(0), "^done$");
}

// The file of the regular face that is there without any set-up of the test's own.
static std::string regular_face_file() {
    std::string path;
    FcConfig *config = FcInitLoadConfigAndFonts();  // apart from the one that the program uses
    FcPattern *wanted = FcNameParse(reinterpret_cast<const FcChar8 *>("Arial:regular"));
    FcConfigSubstitute(config, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult result = FcResultNoMatch;
    FcPattern *match = FcFontMatch(config, wanted, &result);
    FcChar8 *file = nullptr;
    if (match != nullptr && FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch) {
        path = reinterpret_cast<const char *>(file);
    }
    if (match != nullptr) {
        FcPatternDestroy(match);
    }
    FcPatternDestroy(wanted);
    FcConfigDestroy(config);
    return path;
}

static void draw_with_a_regular_face_only() {
    {
        const TemporaryFolder folder;
        test_file_write(folder.file(L"face.ttf"), test_file_read(test_wide(regular_face_file())));
        use_fonts_of(folder);
        const Canvas canvas;
        const i32 regular_width = canvas.load(32, 400).avg_char_width;
        const Ink regular = canvas.draw("H");
        const i32 bold_width = canvas.load(32, 700).avg_char_width;
        const Ink bold = canvas.draw("H");
        expect(regular.count > 0, "the regular face is found");
        expect(bold.count > regular.count, "bold is drawn thicker");
        expect(bold.advance >= regular.advance, "bold is no narrower");
        expect(bold_width > regular_width, "the average grows with the letters");
    }
    std::fprintf(stderr, "done");
    std::_Exit(0);
}

TEST(PlatformFontListsDeathTest, WithoutABoldFaceTheRegularOneIsThickened) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(draw_with_a_regular_face_only(), testing::ExitedWithCode(0), "^done$");
}
#endif
