#include "app/window_texts.h"

#include <cassert>
#include <cwchar>
#include <cwctype>

const MenuItem MENU_ITEMS[MENU_ITEM_COUNT] = {
    {MENU_SAVE_IMAGES, L"&Save images"}, {MENU_RUN, L"&Run Process"}, {MENU_STOP, L"&Stop"},
    {MENU_LOAD_GDS, L"&Load GDS"},       {MENU_ABOUT, L"&About"},
};

const StatusField STATUS_FIELDS[STATUS_PART_COUNT] = {
    {80, L"GDS file:"},
    {600, L"Not loaded"},
    {680, L"Process file:"},
    {1200, L"Not loaded"},
};

FileDialogTexts file_dialog_texts(FileKind kind) {
    assert(kind == FILE_LAYOUT || kind == FILE_PROCESS);
    if (kind == FILE_LAYOUT) {
        return {L"Open GDS file", L"GDS Files (*.gds)", L"*.gds", L"gds"};
    }
    return {L"Open process file", L"Text Files (*.txt)", L"*.txt", L"txt"};
}

bool file_is_of_kind(const wchar_t *path, FileKind kind) {
    assert(path != nullptr);
    const wchar_t *dot = std::wcsrchr(path, L'.');
    if (dot == nullptr) {
        return false;
    }
    const wchar_t *wanted = file_dialog_texts(kind).extension;
    const wchar_t *seen = dot + 1;
    while (*wanted != 0 && static_cast<wchar_t>(std::towlower(static_cast<wint_t>(*seen))) == *wanted) {
        ++wanted;
        ++seen;
    }
    return *wanted == 0 && *seen == 0;
}

const wchar_t *const FOLDER_DIALOG_TITLE = L"Choose another folder for the images";
const wchar_t *const DROP_WRONG_KIND =
    L"Quarn opens layouts (.gds) and process files (.txt). What was dropped is neither.";
const wchar_t *const DROP_DURING_RUN =
    L"A run is going on. Drop the files again when it has ended, or stop it first.";
const wchar_t *const DROP_NO_LAYOUT =
    L"A process file runs on a layout, and none is loaded. Drop the layout (.gds) first, or both together.";

const char *const ABOUT_TEXT = "Quarn: software to render semicon process cross sections \n\n";

NString *about_caption() {
    return string_make("%s %s", PROGRAM_NAME, PROGRAM_VERSION);
}
