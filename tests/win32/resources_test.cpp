// What both programs carry for Windows beside their code.
#include <gtest/gtest.h>

#include "platform/memory.h"
#include "platform/platform.h"
#include "tests/support/test_support.h"

struct Program {
    const wchar_t *file;
    std::vector<const char *> manifest;  // texts that it contains
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

static std::string wide_bytes(const std::wstring &text) {
    return std::string(reinterpret_cast<const char *>(text.data()), text.size() * sizeof(wchar_t));
}

TEST_P(Resources, IconVersionAndManifest) {
    const WideText folder = platform_program_folder();
    const std::wstring path = std::wstring(folder.get()) + L"\\" + GetParam().file;
    HMODULE program = LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(program, nullptr);
    EXPECT_NE(resource(program, RT_GROUP_ICON, 1), "");
    std::string version = resource(program, RT_VERSION, VS_VERSION_INFO);
    EXPECT_NE(version.find(wide_bytes(GetParam().file)), std::string::npos) << "of another program";
    EXPECT_NE(version.find(wide_bytes(L"3.0.0")), std::string::npos);
    std::string manifest = resource(program, RT_MANIFEST, 1);
    for (const char *text : GetParam().manifest) {
        EXPECT_NE(manifest.find(text), std::string::npos) << text << " in\n" << manifest;
    }
    FreeLibrary(program);
}

static const Program PROGRAMS[] = {
    {L"quarn.exe", {">UTF-8<", ">unaware<", "gdiScaling", "longPathAware", "Common-Controls"}},
    {L"quarn-batch.exe", {">UTF-8<", "longPathAware"}},
};

INSTANTIATE_TEST_SUITE_P(Each, Resources, testing::ValuesIn(PROGRAMS), [](const auto &program) {
    return std::string(program.param.file[5] == L'.' ? "Window" : "Batch");
});
