// mesh_files.h: a step to be written as a mesh file in a test.
#pragma once
#include <string>
#include "export/export_formats.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

// A step of a stack with facts that have a name for everything.
struct MeshStep {
    ExportFacts facts = {"Quarn 1.2.3", L"/folder/layout.gds", L"/folder/process.txt", nullptr,
                         "2024-05-31 17:05"};
    ExportStep step;

    explicit MeshStep(const Stack *stack)
        : step{stack, 3, 2, L"Cross section after OXIDE deposition", nullptr, 1.0F, &facts} {}
    MeshStep(const MeshStep &) = delete;
    MeshStep &operator=(const MeshStep &) = delete;
};

// The bytes of the file, or "" and the reason.
inline std::string mesh_file(const ExportStep &step, ExportFormat format, std::wstring *reason) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"mesh");
    wchar_t why[EXPORT_REASON_SIZE] = L"";
    const bool written = export_write(&step, format, path.c_str(), why);
    *reason = why;
    return written ? test_file_read(path) : "";
}

// A number at a place, least significant byte first.
inline u32 mesh_u32(const std::string &bytes, size_t at) {
    u32 value = 0;
    for (size_t i = 4; i-- > 0;) {
        value = value << 8 | static_cast<u8>(bytes[at + i]);
    }
    return value;
}
