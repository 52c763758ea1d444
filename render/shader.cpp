#include "render/shader.h"

#include <GL/glew.h>
#include <cassert>
#include <cstdio>
#include <cstring>
#include "log/log.h"
#include "platform/memory.h"
#include "platform/platform.h"

static constexpr i32 LINE_SIZE = 1024;

// Adds a piece of a line behind a source. When memory is lacking the piece is dropped, and said so.
// Returns whether it is there.
static bool source_append(NString *source, const char *piece) {
    const u64 length = std::strlen(piece);
    void *grown = memory_try_reallocate(source->text, static_cast<i64>(source->count + length + 1), 1);
    if (grown == nullptr) {
        diagnostic_write(L"memory is lacking: a line of a shader file is left out");
        return false;
    }
    source->text = static_cast<char *>(grown);
    std::memcpy(source->text + source->count, piece, length + 1);
    source->count += length;
    return true;
}

ShaderSource shader_file_read(const wchar_t *path) {
    assert(path != nullptr);
    ShaderSource source = {Owned<NString>(string_copy("")), Owned<NString>(string_copy("")), false};
    std::FILE *file = platform_input_open(path, "r");
    if (file == nullptr) {
        diagnostic_write(L"%ls: %ls", path, platform_error_text());
        console_printf_w(L"Failed to open shader file: %ls\r\n", path);
        return source;
    }
    NString *section = source.vertex.get();
    char line[LINE_SIZE];  // a longer line comes in pieces, each of them treated as a line
    while (std::fgets(line, LINE_SIZE, file) != nullptr) {
        if (std::strstr(line, "#shader") == nullptr) {
            source.incomplete |= !source_append(section, line);
        } else if (std::strstr(line, " vertex") != nullptr) {
            section = source.vertex.get();
        } else if (std::strstr(line, " fragment") != nullptr) {
            section = source.fragment.get();
        }
    }
    std::fclose(file);
    return source;
}

u32 shader_compile(u32 type, const char *source) {
    assert((type == GL_VERTEX_SHADER || type == GL_FRAGMENT_SHADER) && source != nullptr);
    assert(platform_gl_is_current());
    const bool is_vertex = type == GL_VERTEX_SHADER;
    const u32 shader = glCreateShader(type);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint status = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
    log_write(L"%ls shader compile status: %d", is_vertex ? L"Vertex" : L"Fragment", status);
    if (status == GL_TRUE) {
        return shader;
    }
    GLint length = 0;
    glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &length);
    const NarrowText text = memory_scratch_zeroed<char>(i64{length} + 1);
    glGetShaderInfoLog(shader, length, nullptr, text.get());
    console_printf("Failed to compile %s shader with error %s", is_vertex ? "vertex" : "fragment",
                   text.get());
    console_append(L"\r\n");
    glDeleteShader(shader);
    return 0;
}

static void report_link_failure(u32 program) {
    const GLint longest = 1024;
    GLint length = 0;
    glGetProgramiv(program, GL_INFO_LOG_LENGTH, &length);
    length = length < longest ? length : longest;
    const NarrowText text = memory_scratch_zeroed<char>(i64{length} + 1);
    glGetProgramInfoLog(program, length, nullptr, text.get());
    console_printf("Failed to link program with error %s", text.get());
    console_append(L"\r\n\r\n");
}

ShaderProgram *shader_program_load(const wchar_t *path) {
    assert(path != nullptr && platform_gl_is_current());
    ShaderProgram *program = memory_new_zeroed<ShaderProgram>();
    const ShaderSource source = shader_file_read(path);
    log_write(L"Loading shader file %ls", path);
    log_write(L"Creating shader program");
    const u32 name = glCreateProgram();
    log_write(L"Creating shader program completed");
    const u32 vertex = shader_compile(GL_VERTEX_SHADER, nstring_text(source.vertex.get()));
    const u32 fragment = shader_compile(GL_FRAGMENT_SHADER, nstring_text(source.fragment.get()));
    log_write(L"Shaders compiled");
    glAttachShader(name, vertex);
    glAttachShader(name, fragment);
    log_write(L"Shaders attached");
    glLinkProgram(name);
    log_write(L"Program linked");
    GLint status = 0;
    glGetProgramiv(name, GL_LINK_STATUS, &status);
    log_write(L"Program link status: %d", status);
    if (status != GL_TRUE) {
        report_link_failure(name);
    }
    glValidateProgram(name);
    glDeleteShader(vertex);
    glDeleteShader(fragment);
    program->name = name;
    program->incomplete = source.incomplete;
    return program;
}

// A program of which a stage failed to compile may still link, so the stages are counted too.
bool shader_program_is_usable(const ShaderProgram *program) {
    assert(program != nullptr && platform_gl_is_current());
    GLint linked = 0;
    GLint stages = 0;
    glGetProgramiv(program->name, GL_LINK_STATUS, &linked);
    glGetProgramiv(program->name, GL_ATTACHED_SHADERS, &stages);
    return linked == GL_TRUE && stages == 2 && !program->incomplete;
}

void shader_program_free(ShaderProgram *program) {
    if (program == nullptr) {
        return;
    }
    glDeleteProgram(program->name);
    memory_free(program);
}
