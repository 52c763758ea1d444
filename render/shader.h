// shader.h: the shader programs, read from text files with a section per stage.
#pragma once
#include "log/text.h"

// The sources of one program; each may be empty.
struct ShaderSource {
    Owned<NString> vertex;
    Owned<NString> fragment;
    bool incomplete;  // lines were left out for lack of memory
};

struct ShaderProgram {
    u32 name;         // OpenGL program
    bool incomplete;  // its sources were: it may link all the same, and draw something else
};

// Reads a shader file: lines after a line with "#shader" and " vertex" or " fragment" go to that
// stage. Any bytes are safe. Never fails: a missing file is reported on the console and gives two empty
// sources.
ShaderSource shader_file_read(const wchar_t *path);

// Compiles one stage; 0 after reporting a failure on the console. Needs a current context.
//   type   GL_VERTEX_SHADER or GL_FRAGMENT_SHADER
u32 shader_compile(u32 type, const char *source);

// Reads, compiles and links. A failure is reported on the console and the program is returned all
// the same. Needs a current context. Freed with shader_program_free.
ShaderProgram *shader_program_load(const wchar_t *path);

// Whether a program was made of whole sources and linked without error. Needs the program's context.
bool shader_program_is_usable(const ShaderProgram *program);

void shader_program_free(ShaderProgram *program);  // needs the context; takes null

template <>
struct Freed<ShaderProgram> {
    void operator()(ShaderProgram *program) const { shader_program_free(program); }
};
