#include "tests/app/batch_scene.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/platform.h"

namespace fs = std::filesystem;

BatchScene::BatchScene() {
    write("a.gds", small_layout_bytes());
}

std::string BatchScene::path(const std::string &name) const {
    return test_utf8(folder.path) + "/" + name;
}

void BatchScene::write(const std::string &name, const std::string &bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
}

std::string BatchScene::read(const std::string &name) const {
    std::ifstream stream(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

bool BatchScene::exists(const std::string &name) const {
    std::error_code error;
    return fs::exists(path(name), error);
}

std::vector<std::string> BatchScene::list(const std::string &name) const {
    std::vector<std::string> names;
    std::error_code error;
    for (const fs::directory_entry &entry : fs::directory_iterator(path(name), error)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

ProgramCall BatchScene::call(const std::vector<std::string> &arguments) const {
    ProgramCall result;
    result.program = QUARN_BATCH_PROGRAM;
    result.arguments = arguments;
    result.folder = test_utf8(folder.path);
    return result;
}

ProgramResult BatchScene::run(const std::vector<std::string> &arguments) const {
    return run_call(call(arguments));
}

ProgramResult BatchScene::run_call(const ProgramCall &call) const {
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
