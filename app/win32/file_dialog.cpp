#include "app/win32/file_dialog.h"

#include <commdlg.h>
// After windows.h, which names the types that this one is written in.
#include <shobjidl.h>

#include <cwchar>

#include "app/window_texts.h"
#include "log/log.h"
#include "platform/memory.h"

static constexpr DWORD PATH_CAPACITY = 260;  // characters, the longest path of the dialog

static WString *last_folder = nullptr;  // null until the first file

void file_dialog_free() {
    wstring_free(last_folder);
    last_folder = nullptr;
}

// The folder that a file or folder lies in, a new string.
static WString *folder_of(const wchar_t *path) {
    const DWORD room = GetFullPathNameW(path, 0, nullptr, nullptr);
    auto *full = memory_new_zeroed<wchar_t>(i64{room} + 1);
    GetFullPathNameW(path, room, full, nullptr);
    wchar_t *separator = std::wcsrchr(full, L'\\');
    if (separator != nullptr) {
        separator[separator == full + 2 && full[1] == L':' ? 1 : 0] = 0;  // "C:\" keeps its own
    }
    WString *folder = wstring_copy(full);
    memory_free(full);
    return folder;
}

void file_dialog_remember_folder(const wchar_t *path) {
    file_dialog_free();
    last_folder = folder_of(path);
}

// Copies a text with its zero; returns the place behind that.
static wchar_t *copy_text(wchar_t *out, const wchar_t *text) {
    const size_t size = std::wcslen(text) + 1;
    std::wmemcpy(out, text, size);
    return out + size;
}

WString *file_dialog_open(HWND owner, FileKind kind) {
    const FileDialogTexts texts = file_dialog_texts(kind);
    wchar_t filter[64] = {};  // name and pattern, each with its zero, and another zero at the end
    copy_text(copy_text(filter, texts.filter_name), texts.pattern);
    wchar_t path[PATH_CAPACITY] = {};
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = filter;
    dialog.lpstrFile = path;
    dialog.nMaxFile = PATH_CAPACITY;
    dialog.lpstrInitialDir = last_folder != nullptr ? wstring_text(last_folder) : nullptr;
    dialog.lpstrTitle = texts.title;
    dialog.lpstrDefExt = texts.extension;
    dialog.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY;
    return GetOpenFileNameW(&dialog) != FALSE ? wstring_copy(path) : nullptr;
}

// The shell's item of a folder; null when there is no such folder. Released by the caller.
static IShellItem *folder_item(const wchar_t *folder) {
    IShellItem *item = nullptr;
    return SUCCEEDED(SHCreateItemFromParsingName(folder, nullptr, IID_PPV_ARGS(&item))) ? item : nullptr;
}

static void prepare_folder_dialog(IFileDialog *dialog, const wchar_t *failed) {
    FILEOPENDIALOGOPTIONS options = 0;
    dialog->GetOptions(&options);
    dialog->SetOptions(options | FOS_PICKFOLDERS | FOS_FORCEFILESYSTEM | FOS_PATHMUSTEXIST);
    dialog->SetTitle(FOLDER_DIALOG_TITLE);
    WString *parent = folder_of(failed);
    IShellItem *start = folder_item(wstring_text(parent));
    wstring_free(parent);
    if (start != nullptr) {
        dialog->SetFolder(start);
        start->Release();
    }
}

// What the dialog gave, a new string; null when it is no folder of the file system.
static WString *chosen_folder(IFileDialog *dialog) {
    IShellItem *item = nullptr;
    if (FAILED(dialog->GetResult(&item))) {
        return nullptr;
    }
    WString *folder = nullptr;
    wchar_t *name = nullptr;
    if (SUCCEEDED(item->GetDisplayName(SIGDN_FILESYSPATH, &name))) {
        folder = wstring_copy(name);
        CoTaskMemFree(name);
    }
    item->Release();
    return folder;
}

WString *file_dialog_choose_folder(HWND owner, const wchar_t *failed) {
    IFileDialog *dialog = nullptr;
    if (FAILED(
            CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&dialog)))) {
        log_write(L"The system has no dialog for folders");
        return nullptr;
    }
    prepare_folder_dialog(dialog, failed);
    WString *folder = SUCCEEDED(dialog->Show(owner)) ? chosen_folder(dialog) : nullptr;
    dialog->Release();
    return folder;
}
