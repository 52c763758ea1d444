#include "app/win32/file_dialog.h"

#include <commdlg.h>
// After windows.h, which names the types that this one is written in.
#include <shobjidl.h>

#include <cassert>
#include <cwchar>

#include "app/win32/win32_desktop.h"
#include "app/window_texts.h"
#include "log/log.h"
#include "platform/thread_role.h"

static constexpr DWORD PATH_CAPACITY = 260;  // characters, the longest path of the dialog

// The same for saving, where a long name of a step meets a long folder.
static constexpr DWORD SAVE_CAPACITY = 1024;

// For what the shell lends: released with its owner.
struct Released {
    void operator()(IUnknown *object) const { object->Release(); }
};

template <typename Interface>
using Lent = std::unique_ptr<Interface, Released>;

// Puts another string, or none, into the place of one, which is freed.
static void replace(WString **place, WString *other) {
    wstring_free(*place);
    *place = other;
}

void file_dialog_free() {
    replace(&g_desktop->dialogs.last_folder, nullptr);
    replace(&g_desktop->dialogs.save_folder, nullptr);
}

// The folder that a file or folder lies in, a new string.
static WString *folder_of(const wchar_t *path) {
    const DWORD room = GetFullPathNameW(path, 0, nullptr, nullptr);
    const WideText full = memory_scratch_zeroed<wchar_t>(i64{room} + 1);
    GetFullPathNameW(path, room, full.get(), nullptr);
    wchar_t *separator = std::wcsrchr(full.get(), L'\\');
    if (separator != nullptr) {
        separator[separator == full.get() + 2 && full[1] == L':' ? 1 : 0] = 0;  // "C:\" keeps its own
    }
    return wstring_copy(full.get());
}

void file_dialog_remember_folder(const wchar_t *path) {
    assert(thread_role_fits(THREAD_WINDOW) && path != nullptr);
    replace(&g_desktop->dialogs.last_folder, folder_of(path));
}

// Copies a text with its zero; returns the place behind that.
static wchar_t *copy_text(wchar_t *out, const wchar_t *text) {
    const size_t size = std::wcslen(text) + 1;
    std::wmemcpy(out, text, size);
    return out + size;
}

WString *file_dialog_open(HWND owner, FileKind kind) {
    assert(thread_role_fits(THREAD_WINDOW));
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
    const WString *last_folder = g_desktop->dialogs.last_folder;
    dialog.lpstrInitialDir = last_folder != nullptr ? wstring_text(last_folder) : nullptr;
    dialog.lpstrTitle = texts.title;
    dialog.lpstrDefExt = texts.extension;
    dialog.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY;
    return GetOpenFileNameW(&dialog) != FALSE ? wstring_copy(path) : nullptr;
}

static constexpr size_t KIND_CAPACITY = 64;  // characters of a kind's name and pattern, with their zeros

// Names and patterns of all kinds, each with its zero, and another zero at the end.
static void fill_save_filter(const SaveForm *form, wchar_t *out) {
    for (i32 i = 0; i < form->kind_count; ++i) {
        const SaveKind *kind = &form->kinds[i];
        assert(std::wcslen(kind->name) + std::wcslen(kind->extension) + 3 <= KIND_CAPACITY);
        out = copy_text(out, kind->name);
        *out = L'*';
        out = copy_text(out + 1, kind->extension);
    }
    *out = 0;
}

WString *file_dialog_save(HWND owner, const SaveForm *form, const wchar_t *name, i32 *kind) {
    assert(thread_role_fits(THREAD_WINDOW) && form != nullptr && name != nullptr && kind != nullptr);
    assert(*kind >= 0 && *kind < form->kind_count && form->kind_count <= MOST_SAVE_KINDS);
    wchar_t filter[KIND_CAPACITY * MOST_SAVE_KINDS + 1];
    fill_save_filter(form, filter);
    wchar_t path[SAVE_CAPACITY] = {};
    std::wcsncpy(path, name, SAVE_CAPACITY - 1);
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = filter;
    dialog.nFilterIndex = static_cast<DWORD>(*kind) + 1;
    dialog.lpstrFile = path;
    dialog.nMaxFile = SAVE_CAPACITY;
    const FileDialogs *dialogs = &g_desktop->dialogs;
    const WString *folder = dialogs->save_folder != nullptr ? dialogs->save_folder : dialogs->last_folder;
    dialog.lpstrInitialDir = folder != nullptr ? wstring_text(folder) : nullptr;
    dialog.lpstrTitle = form->title;
    dialog.lpstrDefExt = form->kinds[*kind].extension + 1;  // without its dot
    // The current folder is where dumps go, which saving is not to change.
    dialog.Flags =
        OFN_EXPLORER | OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (GetSaveFileNameW(&dialog) == FALSE) {
        return nullptr;
    }
    if (dialog.nFilterIndex >= 1 && dialog.nFilterIndex <= static_cast<DWORD>(form->kind_count)) {
        *kind = static_cast<i32>(dialog.nFilterIndex) - 1;
    }
    replace(&g_desktop->dialogs.save_folder, folder_of(path));
    return wstring_copy(path);
}

// The shell's item of a folder; null when there is no such folder.
static Lent<IShellItem> folder_item(const wchar_t *folder) {
    IShellItem *item = nullptr;
    const HRESULT result = SHCreateItemFromParsingName(folder, nullptr, IID_PPV_ARGS(&item));
    return Lent<IShellItem>(SUCCEEDED(result) ? item : nullptr);
}

static void prepare_folder_dialog(IFileDialog *dialog, const wchar_t *failed) {
    FILEOPENDIALOGOPTIONS options = 0;
    dialog->GetOptions(&options);
    dialog->SetOptions(options | FOS_PICKFOLDERS | FOS_FORCEFILESYSTEM | FOS_PATHMUSTEXIST);
    dialog->SetTitle(FOLDER_DIALOG_TITLE);
    const Owned<WString> parent(folder_of(failed));
    const Lent<IShellItem> start = folder_item(wstring_text(parent.get()));
    if (start != nullptr) {
        dialog->SetFolder(start.get());
    }
}

// What the dialog gave, a new string; null when it is no folder of the file system.
static WString *chosen_folder(IFileDialog *dialog) {
    IShellItem *found = nullptr;
    if (FAILED(dialog->GetResult(&found))) {
        return nullptr;
    }
    const Lent<IShellItem> item(found);
    wchar_t *name = nullptr;
    if (FAILED(item->GetDisplayName(SIGDN_FILESYSPATH, &name))) {
        return nullptr;
    }
    WString *folder = wstring_copy(name);
    CoTaskMemFree(name);
    return folder;
}

WString *file_dialog_choose_folder(HWND owner, const wchar_t *failed) {
    assert(thread_role_fits(THREAD_WINDOW) && failed != nullptr);
    IFileDialog *made = nullptr;
    if (FAILED(CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&made)))) {
        log_write(L"The system has no dialog for folders");
        return nullptr;
    }
    const Lent<IFileDialog> dialog(made);
    prepare_folder_dialog(dialog.get(), failed);
    return SUCCEEDED(dialog->Show(owner)) ? chosen_folder(dialog.get()) : nullptr;
}
