#include "gl_test.h"
#include "log/log.h"
#include "platform/memory.h"
#include "render/shader.h"
#include "tests/support/test_support.h"

class ShaderProgramTest : public GlTest {};

static const char *const GOOD_VERTEX = "#version 130\nvoid main() { gl_Position = vec4(0.0); }\n";
static const char *const GOOD_FRAGMENT = "#version 130\nvoid main() { gl_FragColor = vec4(0.0); }\n";

TEST_F(ShaderProgramTest, LoadsTheInstalledPrograms) {
    for (const wchar_t *name : {L"surface.shader", L"point.shader"}) {
        const ConsoleCapture capture;
        const Owned<ShaderProgram> program(shader_program_load(test_data_file(name).c_str()));
        EXPECT_TRUE(shader_program_is_usable(program.get()));
        EXPECT_EQ(capture.narrow(), "");
    }
}

TEST_F(ShaderProgramTest, TheInstalledProgramsOfferWhatTheSceneSets) {
    const Owned<ShaderProgram> surface(shader_program_load(test_data_file(L"surface.shader").c_str()));
    for (const char *uniform : {"transform", "lightColor", "lightPos", "color", "alpha", "hideUndersides"}) {
        EXPECT_GE(glGetUniformLocation(surface->name, uniform), 0) << uniform;
    }
    EXPECT_EQ(glGetAttribLocation(surface->name, "position"), 0);
    EXPECT_EQ(glGetAttribLocation(surface->name, "normal"), 1);
    const Owned<ShaderProgram> point(shader_program_load(test_data_file(L"point.shader").c_str()));
    EXPECT_GE(glGetUniformLocation(point->name, "transform"), 0);
    EXPECT_GE(glGetUniformLocation(point->name, "viewHeight"), 0);
    EXPECT_EQ(glGetAttribLocation(point->name, "position"), 0);
    EXPECT_EQ(glGetAttribLocation(point->name, "shade"), 2);
}

TEST_F(ShaderProgramTest, LogsEveryStage) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"good.shader");
    test_file_write(path,
                    std::string("#shader vertex\n") + GOOD_VERTEX + "#shader fragment\n" + GOOD_FRAGMENT);
    log_start(folder.file(L"log.txt").c_str());
    const Owned<ShaderProgram> program(shader_program_load(path.c_str()));
    log_end();
    const std::string log = test_text_read(folder.file(L"log.txt"));
    const std::string expected =
        "Loading shader file " + test_utf8(path) +
        "\nCreating shader program\nCreating shader program completed\n"
        "Vertex shader compile status: 1\nFragment shader compile status: 1\n"
        "Shaders compiled\nShaders attached\nProgram linked\nProgram link status: 1\n";
    ASSERT_NE(log.find(expected), std::string::npos) << log;
    EXPECT_EQ(log.size(), log.find(expected) + expected.size());
}

TEST_F(ShaderProgramTest, AFaultyStageIsReportedAndTheProgramReturned) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"bad.shader");
    const struct {
        std::string vertex, fragment, told, not_told;
    } cases[] = {
        {"#version 130\nnonsense\n", GOOD_FRAGMENT, "Failed to compile vertex shader with error ",
         "Failed to compile fragment"},
        {GOOD_VERTEX, "#version 130\nnonsense\n", "Failed to compile fragment shader with error ",
         "Failed to compile vertex"},
    };
    for (const auto &c : cases) {
        const ConsoleCapture capture;
        test_file_write(path, "#shader vertex\n" + c.vertex + "#shader fragment\n" + c.fragment);
        const i64 before = memory_live_blocks();
        Owned<ShaderProgram> program(shader_program_load(path.c_str()));
        ASSERT_NE(program, nullptr);
        EXPECT_NE(program->name, 0U);
        EXPECT_FALSE(shader_program_is_usable(program.get()));
        const std::string told = capture.narrow();
        EXPECT_EQ(told.find(c.told), 0U) << told;
        EXPECT_EQ(told.find(c.not_told), std::string::npos) << told;
        EXPECT_EQ(told.size() - 2, told.rfind("\r\n"));
        program.reset();
        EXPECT_EQ(memory_live_blocks(), before);
    }
}

TEST_F(ShaderProgramTest, AFailedLinkIsReported) {
    const TemporaryFolder folder;
    const ConsoleCapture capture;
    const std::wstring path = folder.file(L"bad.shader");
    test_file_write(path, std::string("#shader vertex\n") + GOOD_VERTEX +
                              "#shader fragment\n#version 130\nvec4 missing();\n"
                              "void main() { gl_FragColor = missing(); }\n");
    const Owned<ShaderProgram> program(shader_program_load(path.c_str()));
    EXPECT_FALSE(shader_program_is_usable(program.get()));
    const std::string told = capture.narrow();
    EXPECT_EQ(told.find("Failed to link program with error "), 0U) << told;
    EXPECT_EQ(told.size() - 4, told.rfind("\r\n\r\n"));
}

// The whole file is the vertex stage; the empty fragment stage fails.
TEST_F(ShaderProgramTest, AFileWithoutHeadersHasNoFragmentStage) {
    const TemporaryFolder folder;
    const ConsoleCapture capture;
    const std::wstring path = folder.file(L"plain.shader");
    test_file_write(path, GOOD_VERTEX);
    const Owned<ShaderProgram> program(shader_program_load(path.c_str()));
    EXPECT_FALSE(shader_program_is_usable(program.get()));
    const std::string told = capture.narrow();
    EXPECT_NE(told.find("Failed to "), std::string::npos) << told;
    EXPECT_EQ(told.find("vertex shader"), std::string::npos) << told;
}

TEST_F(ShaderProgramTest, AMissingFileGivesAnUnusableProgram) {
    const TemporaryFolder folder;
    const ConsoleCapture capture;
    const std::wstring path = folder.file(L"missing.shader");
    const Owned<ShaderProgram> program(shader_program_load(path.c_str()));
    EXPECT_FALSE(shader_program_is_usable(program.get()));
    EXPECT_EQ(capture.narrow().find("Failed to open shader file: " + test_utf8(path) + "\r\n"), 0U);
    shader_program_free(nullptr);
}
