#include "app/window_texts.h"

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
    if (kind == FILE_LAYOUT) {
        return {L"Open GDS file", L"GDS Files (*.gds)", L"*.gds", L"gds"};
    }
    return {L"Open process file", L"Text Files (*.txt)", L"*.txt", L"txt"};
}

const char *const ABOUT_TEXT = "Quarn: software to render semicon process cross sections \n\n";

NString *about_caption() {
    return string_format("%s %s", PROGRAM_NAME, PROGRAM_VERSION);
}
