#include "tests/app/batch_fixture.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/platform.h"

namespace fs = std::filesystem;

BatchFixture::BatchFixture() {
    write("a.gds", small_layout_bytes());
}

std::string BatchFixture::path(const std::string &name) const {
    return test_utf8(folder.path) + "/" + name;
}

void BatchFixture::write(const std::string &name, const std::string &bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
}

std::string BatchFixture::read(const std::string &name) const {
    std::ifstream stream(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

bool BatchFixture::exists(const std::string &name) const {
    std::error_code error;
    return fs::exists(path(name), error);
}

std::vector<std::string> BatchFixture::list(const std::string &name) const {
    std::vector<std::string> names;
    std::error_code error;
    for (const fs::directory_entry &entry : fs::directory_iterator(path(name), error)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

ProgramCall BatchFixture::call(const std::vector<std::string> &arguments) const {
    ProgramCall result;
    result.program = QUARN_BATCH_PROGRAM;
    result.arguments = arguments;
    result.folder = test_utf8(folder.path);
    return result;
}

ProgramResult BatchFixture::run(const std::vector<std::string> &arguments) const {
    return run_call(call(arguments));
}

ProgramResult BatchFixture::run_call(const ProgramCall &call) const {
    return program_run(call, test_utf8(scratch.path));
}

bool graphics_available() {
    static const bool available = [] {
        PlatformGl *gl = platform_gl_create_offscreen(nullptr);
        platform_gl_free(gl);
        return gl != nullptr;
    }();
    return available;
}
