// What both programs carry for Windows beside their code.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/memory.h"
#include "platform/platform.h"
#include "tests/support/test_support.h"

struct Program {
    const wchar_t *file;
    bool has_controls;                                            // of the system's newer look
    std::vector<std::pair<const char *, const char *>> manifest;  // settings; "" for one that is not there
};

class Resources : public testing::TestWithParam<Program> {};

// The bytes of a resource; empty when there is none.
static std::string resource(HMODULE program, const wchar_t *type, WORD name) {
    HRSRC place = FindResourceW(program, MAKEINTRESOURCEW(name), type);
    if (place == nullptr) {
        return "";
    }
    const void *bytes = LockResource(LoadResource(program, place));
    return std::string(static_cast<const char *>(bytes), SizeofResource(program, place));
}

// What stands between the tags of a setting.
static std::string setting(const std::string &manifest, const std::string &name) {
    const size_t tag = manifest.find("<" + name + " ");
    if (tag == std::string::npos) {
        return "";
    }
    const size_t start = manifest.find('>', tag) + 1;
    return manifest.substr(start, manifest.find("</" + name + ">", start) - start);
}

static std::wstring program_file() {
    const WideText folder = platform_program_folder();
    return std::wstring(folder.get()) + L"\\" + Resources::GetParam().file;
}

static std::string wide_bytes(const std::wstring &text) {
    return std::string(reinterpret_cast<const char *>(text.data()), text.size() * sizeof(wchar_t));
}

TEST_P(Resources, IconVersionAndManifest) {
    HMODULE program = LoadLibraryExW(program_file().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(program, nullptr);
    EXPECT_NE(resource(program, RT_GROUP_ICON, 1), "");
    const std::string version = resource(program, RT_VERSION, VS_VERSION_INFO);
    EXPECT_NE(version.find(wide_bytes(GetParam().file)), std::string::npos) << "of another program";
    EXPECT_NE(version.find(wide_bytes(L"3.0.0")), std::string::npos);
    const std::string manifest = resource(program, RT_MANIFEST, 1);
    for (const auto &[name, value] : GetParam().manifest) {
        EXPECT_EQ(setting(manifest, name), value) << name << " in\n" << manifest;
    }
    EXPECT_EQ(manifest.find("Common-Controls") != std::string::npos, GetParam().has_controls);
    FreeLibrary(program);
}

// What a program can do with the scale of the screen stands in its manifest; one that said otherwise while it
// runs would undo that.
TEST_P(Resources, TheManifestAloneTellsOfTheScale) {
    const std::string bytes = test_file_read(program_file());
    ASSERT_NE(bytes.find("CreateWindowExW"), std::string::npos) << "functions are imported by name";
    for (const char *function : {"SetProcessDPIAware", "SetProcessDpiAwareness", "SetThreadDpiAwareness",
                                 "SetThreadDpiHosting", "EnableNonClientDpiScaling", "GetDpiFor"}) {
        EXPECT_EQ(bytes.find(function), std::string::npos) << function;
    }
}

static const Program PROGRAMS[] = {
    // clang-format off
    {L"quarn.exe", true, {{"activeCodePage", "UTF-8"}, {"longPathAware", "true"}, {"dpiAware", "true"}, {"dpiAwareness", "system"}, {"gdiScaling", ""}}},
    {L"quarn-batch.exe", false, {{"activeCodePage", "UTF-8"}, {"longPathAware", "true"}, {"dpiAware", "false"}, {"dpiAwareness", "unaware"}, {"gdiScaling", ""}}},
    // clang-format on
};

INSTANTIATE_TEST_SUITE_P(Each, Resources, testing::ValuesIn(PROGRAMS), [](const auto &program) {
    return std::string(program.param.file[5] == L'.' ? "Window" : "Batch");
});
