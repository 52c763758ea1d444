#include "tests/win32/import_patch.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>

#include "platform/base.h"

// The tables of a loaded program are addressed by their distance from its start.
template <typename T>
static T *at_offset(u64 offset) {
    return reinterpret_cast<T *>(reinterpret_cast<u8 *>(GetModuleHandleW(nullptr)) + offset);
}

static const IMAGE_IMPORT_DESCRIPTOR *first_import_library() {
    const auto *dos = at_offset<IMAGE_DOS_HEADER>(0);
    const auto *headers = at_offset<IMAGE_NT_HEADERS>(static_cast<u64>(dos->e_lfanew));
    const IMAGE_DATA_DIRECTORY &directory =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    return at_offset<IMAGE_IMPORT_DESCRIPTOR>(directory.VirtualAddress);
}

static void *replace_slot(void **slot, void *replacement) {
    DWORD access = 0;
    VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &access);
    void *original = *slot;
    *slot = replacement;
    VirtualProtect(slot, sizeof(*slot), access, &access);
    return original;
}

// Replaces every slot of that name in the imports from one library. Returns the last original or null.
static void *patch_library(const IMAGE_IMPORT_DESCRIPTOR *library, const char *name, void *replacement) {
    const auto *names = at_offset<IMAGE_THUNK_DATA>(library->OriginalFirstThunk);
    auto *slots = at_offset<void *>(library->FirstThunk);
    void *original = nullptr;
    for (i32 i = 0; names[i].u1.AddressOfData != 0; ++i) {
        if (IMAGE_SNAP_BY_ORDINAL(names[i].u1.Ordinal)) {
            continue;
        }
        const auto *import = at_offset<IMAGE_IMPORT_BY_NAME>(names[i].u1.AddressOfData);
        const auto *import_name = reinterpret_cast<const char *>(import->Name);
        if (std::strcmp(import_name, name) == 0) {
            original = replace_slot(&slots[i], replacement);
        }
    }
    return original;
}

void *import_patch(const char *name, void *replacement) {
    void *original = nullptr;
    for (const auto *library = first_import_library(); library->Name != 0; ++library) {
        void *found = patch_library(library, name, replacement);
        original = found != nullptr ? found : original;
    }
    if (original == nullptr) {
        ADD_FAILURE() << "the program does not import " << name;
    }
    return original;
}
