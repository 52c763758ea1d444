#include "app/win32/file_dialog.h"

#include <commdlg.h>

#include <cwchar>

#include "app/window_texts.h"

static constexpr DWORD PATH_CAPACITY = 260;  // characters, the longest path of the dialog

// Copies a text with its zero; returns the place behind that.
static wchar_t *copy_text(wchar_t *out, const wchar_t *text) {
    size_t size = std::wcslen(text) + 1;
    std::wmemcpy(out, text, size);
    return out + size;
}

WString *file_dialog_open(HWND owner, FileKind kind) {
    FileDialogTexts texts = file_dialog_texts(kind);
    wchar_t filter[64] = {};  // name and pattern, each with its zero, and another zero at the end
    copy_text(copy_text(filter, texts.filter_name), texts.pattern);
    wchar_t path[PATH_CAPACITY] = {};
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = filter;
    dialog.lpstrFile = path;
    dialog.nMaxFile = PATH_CAPACITY;
    dialog.lpstrTitle = texts.title;
    dialog.lpstrDefExt = texts.extension;
    dialog.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY;
    return GetOpenFileNameW(&dialog) != FALSE ? wstring_copy(path) : nullptr;
}
