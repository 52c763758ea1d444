#include <gtest/gtest.h>
#include "platform/memory.h"
#include "render/shader.h"
#include "tests/support/test_support.h"

// Both stages of a shader file with that content.
static void expect_sections(const std::string &content, const std::string &vertex,
                            const std::string &fragment) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"test.shader");
    test_file_write(path, content);
    const i64 before = memory_live_blocks();
    {
        const ShaderSource source = shader_file_read(path.c_str());
        EXPECT_EQ(source.vertex->text, vertex);
        EXPECT_EQ(source.vertex->count, vertex.size());
        EXPECT_EQ(source.fragment->text, fragment);
        EXPECT_EQ(source.fragment->count, fragment.size());
    }
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(ShaderFileRead, SortsLinesIntoStages) {
    const struct {
        const char *what, *content, *vertex, *fragment;
    } cases[] = {
        {"both stages", "#shader vertex\na\nb\n#shader fragment\nc\n", "a\nb\n", "c\n"},
        {"fragment first", "#shader fragment\nc\n#shader vertex\na\n", "a\n", "c\n"},
        {"a stage in two places", "#shader vertex\na\n#shader fragment\nc\n#shader vertex\nb\n", "a\nb\n",
         "c\n"},
        {"no header: all of it is vertex", "a\nb\n", "a\nb\n", ""},
        {"lines before the first header", "a\n#shader fragment\nc\n", "a\n", "c\n"},
        {"another word keeps the vertex stage", "#shader vertex\na\n#shader geometry\nb\n", "a\nb\n", ""},
        {"another word keeps the fragment stage", "#shader fragment\na\n#shader geometry\nb\n", "", "a\nb\n"},
        {"the word must follow a blank", "#shader fragment\na\n#shader:vertex\nb\n", "", "a\nb\n"},
        {"a tab is no blank", "#shader fragment\na\n#shader\tvertex\nb\n", "", "a\nb\n"},
        {"more than one blank", "#shader fragment\na\n#shader   vertex\nb\n", "b\n", "a\n"},
        {"anywhere in the line", "#shader fragment\na\n// vertex #shader x\nb\n", "b\n", "a\n"},
        {"vertex wins over fragment", "#shader fragment vertex\na\n", "a\n", ""},
        {"the words alone are no header", "#shader fragment\n vertex\n", "", " vertex\n"},
        {"no end of the last line", "#shader fragment\nc", "", "c"},
        {"an empty file", "", "", ""},
        {"empty lines are kept", "#shader vertex\n\n\na\n", "\n\na\n", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        expect_sections(c.content, c.vertex, c.fragment);
    }
}

TEST(ShaderFileRead, KeepsLongLinesWhole) {
    const std::string line = std::string(5000, 'x') + "\n";
    expect_sections("#shader fragment\n" + line + "y\n", "", line + "y\n");
}

// A piece has at most 1023 characters, and each is looked at by itself.
TEST(ShaderFileRead, ReadsLongLinesInPieces) {
    const std::string full(1023, 'x');
    expect_sections("#shader fragment\n" + full + "#shader vertex\na\n", "a\n", full);
    // The word is torn apart by the end of the first piece: no header.
    const std::string torn = std::string(1020, 'x') + "#shader vertex\n";
    expect_sections("#shader fragment\n" + torn, "", torn);
    // "#shader" ends the first piece, " vertex" begins the second: a header that keeps the stage, and
    // the rest of the line as text.
    const std::string parted = std::string(1016, 'x') + "#shader";
    expect_sections("#shader fragment\n" + parted + " vertex\na\n", "", " vertex\na\n");
}

TEST(ShaderFileRead, ReportsAMissingFile) {
    const TemporaryFolder folder;
    const ConsoleCapture capture;
    const std::wstring path = folder.file(L"missing.shader");
    const ShaderSource source = shader_file_read(path.c_str());
    EXPECT_STREQ(source.vertex->text, "");
    EXPECT_STREQ(source.fragment->text, "");
    EXPECT_EQ(capture.narrow(), "Failed to open shader file: " + test_utf8(path) + "\r\n");
    EXPECT_NE(capture.diagnostics().find(test_utf8(path)), std::string::npos);
}

TEST(ShaderFileRead, DropsAPieceThatFindsNoMemory) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"test.shader");
    test_file_write(path, "a\nb\nc\n");
    // The pieces are the last to ask for memory: let ever fewer requests succeed until one is refused.
    std::string read = "a\nb\nc\n";
    for (i64 granted = 100; granted > 0 && read == "a\nb\nc\n"; --granted) {
        memory_trip_after(granted);
        const ShaderSource source = shader_file_read(path.c_str());
        memory_trip_after(-1);
        read = source.vertex->text;
        EXPECT_EQ(read.size(), source.vertex->count);
        EXPECT_EQ(read != "a\nb\nc\n", source.incomplete);
    }
    EXPECT_EQ(read, "a\nb\n");
}
